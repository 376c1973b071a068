#include "param/contract_back_ends.h"

#include "support/scratch_directory.h"

#include <algorithm>
#include <ostream>

namespace {

struct MemoryPlace : Place {
    MemoryPlace() { root.reset(new_MemParam()); }
};

template <class Kind>
std::unique_ptr<Place> Make() {
    return std::make_unique<Kind>();
}

bool IsMarker(const std::string& name, const tagQXVARIANT& value) {
    return name == "@" && value.type == QXVT_EMPTY;
}

std::vector<std::string> SortedNames(CTEnum<const char*>* names) {
    NamesPtr walk(names);
    std::vector<std::string> all;
    const char* name;
    while (walk && walk->Next(1, &name, nullptr)) all.push_back(name);
    std::sort(all.begin(), all.end(), [](const std::string& a, const std::string& b) {
        int order = _stricmp(a.c_str(), b.c_str());
        return order ? order < 0 : a < b;
    });
    return all;
}

}  // namespace

std::ostream& operator<<(std::ostream& out, const BackEnd& backEnd) {
    return out << backEnd.name;
}

std::string SortedTree(IParam* node) {
    std::string text;
    auto add = [&](const std::string& part) { text += (text.empty() ? "" : " ") + part; };
    for (const std::string& name : SortedNames(node->EnumValues())) {
        CQXVariant value;
        bool found = node->GetValue(name.c_str(), &value);
        if (!IsMarker(name, value)) add(name + (found ? "=" + ValueText(value) : ""));
    }
    for (const std::string& name : SortedNames(node->EnumSubParams())) {
        ParamPtr child(node->OpenSubParam(name.c_str(), 0));
        add(name + "{" + (child ? SortedTree(child.get()) : "?") + "}");
    }
    return text;
}

const std::vector<BackEnd>& BackEnds() {
    static const qx_type_info* const table = &qx_typeid<IRegisterIface>();
    static const std::vector<BackEnd> rows = {
        {
            .name = "Memory",
            .make = Make<MemoryPlace>,
            .keeps = false,
            .createOfPath = "a{b{}}",
            .openOfPath = "b{}",
            .openOfPathAnswers = true,
            .openOfPathWithA = "a{b{}}",
            .setOfPath = "a\\b=5:7 a{b=5:7}",
            .setOfDeepPath = "a\\b\\c b{c=5:7}",
            .deleteValueOfPath = "a{b=5:7}",
            .deleteChildOfPath = "a{b{}}",
            .nameOfNone = "@",
            .noneIsDeletedByNone = true,
            .oneNameSpace = false,
            .createOfExisting = "a{}",
            .createOfExistingIsTheSame = true,
            .second = Second::sameObject,
            .withoutForm = {},
            .losingForm = {},
            .emptyTextIsMissing = false,
            .missClears = false,
            .missOfPathClears = false,
            .deleteAnswers = 1,
            .deleteOfMissAnswers = 1,
            .clear = "",
            .clearOfChild = "x=5:1 a{}",
            .clearedGoesOn = true,
            .answers = {table},
            .enumerationIsLive = true,
        },
    };
    return rows;
}
