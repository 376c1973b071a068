#include "param/back_ends/contract_back_ends.h"

#include "support/scratch_directory.h"

#include <algorithm>
#include <ostream>

namespace {

struct MemoryPlace : Place {
    MemoryPlace() { root = ParamPtr(new_MemParam()); }
};

// The path of a file of its own, which goes with the place.
class PlaceFile {
public:
    explicit PlaceFile(const char* ending) {
        static ScratchDirectory directory;
        static int made = 0;
        path = directory.PathOf("contract" + std::to_string(++made) + ending);
    }
    PlaceFile(const PlaceFile&) = delete;
    PlaceFile& operator=(const PlaceFile&) = delete;
    ~PlaceFile() { DeleteFileA(path.c_str()); }

    std::string path;
};

struct IniPlace : Place {
    IniPlace() { root = Reopen(); }
    ~IniPlace() override { root.Release(); }
    ParamPtr Reopen() override { return ParamPtr(new_IParamIniFile(file.path.c_str())); }

    PlaceFile file{".ini"};
};

// A key of its own, which goes with all below it.
template <class Hive>
struct RegistryPlace : Place {
    RegistryPlace() {
        static int made = 0;
        key = "Software\\qxcore tests\\contract " + std::to_string(GetCurrentProcessId()) + " " +
              std::to_string(++made);
        HKEY opened = nullptr;
        RegCreateKeyExA(Hive::Key(), key.c_str(), 0, nullptr, 0, KEY_ALL_ACCESS, nullptr, &opened,
                        nullptr);
        RegCloseKey(opened);
        root = ParamPtr(Hive::Open(key.c_str()));
    }
    ~RegistryPlace() override {
        root.Release();
        RegDeleteTreeA(Hive::Key(), key.c_str());
        RegDeleteKeyA(Hive::Key(), "Software\\qxcore tests");  // when it was the last one in it
    }
    ParamPtr Reopen() override { return ParamPtr(Hive::Open(key.c_str())); }

    std::string key;
};

struct CurrentUser {
    static HKEY Key() { return HKEY_CURRENT_USER; }
    static IParam* Open(const char* key) { return new_IParamCUReg(key); }
};

struct LocalMachine {
    static HKEY Key() { return HKEY_LOCAL_MACHINE; }
    static IParam* Open(const char* key) { return new_IParamLMReg(key); }
};

// A file that is transacted throughout, the way documents are.
struct StoragePlace : Place {
    StoragePlace() { Show(new_Storage(file.path.c_str(), QXSTG_TRANSACTED)); }
    ~StoragePlace() override { root.Release(); }
    ParamPtr Reopen() override {
        root.Release();
        Show(open_Storage(file.path.c_str(), 0));
        return std::move(root);
    }

    PlaceFile file{".document"};

private:
    void Show(IXStorage* storage) {
        root = ParamPtr(new_IXStorParam(storage));
        storage->Release();
    }
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
        add(name + "{" + (child ? SortedTree(child.Get()) : "?") + "}");
    }
    return text;
}

namespace {

constexpr size_t kNoLimit = ~size_t(0);

BackEnd Memory() {
    return {
        .name = "Memory",
        .make = Make<MemoryPlace>,
        .keeps = false,
        .createOfPath = "aa{bb{}}",
        .openOfPath = "bb{}",
        .openOfPathAnswers = true,
        .openOfPathWithA = "aa{bb{}}",
        .openOfPathWithAAnswers = true,
        .setOfPath = "aa\\bb=5:7 aa{bb=5:7}",
        .setOfDeepPath = "aa\\bb\\cc bb{cc=5:7}",
        .deleteValueOfPath = "aa{bb=5:7}",
        .deleteChildOfPath = "aa{bb{}}",
        .setOfEmptyLevel = "\\x=5:7 {x=5:7}",
        .nameOfNone = "@",
        .noneIsDeletedByNone = true,
        .oneNameSpace = false,
        .childOfNoName = Nameless::childLikeOthers,
        .refusedInNames = "",
        .cutInNames = "",
        .createOfExisting = "aa{}",
        .createOfExistingIsTheSame = true,
        .second = Second::sameObject,
        .withoutForm = {},
        .losingForm = {},
        .longestText = kNoLimit,
        .emptyTextIsMissing = false,
        .missClears = false,
        .missOfPathClears = false,
        .deleteAnswers = 1,
        .deleteOfMissAnswers = 1,
        .clear = "",
        .clearOfChild = "x=5:1 aa{}",
        .clearedGoesOn = true,
        .answers = {&qx_typeid<IRegisterIface>()},
        .enumerationIsLive = true,
    };
}

BackEnd IniFile() {
    return {
        .name = "IniFile",
        .make = Make<IniPlace>,
        .keeps = true,
        .createOfPath = "aa{?}",
        .openOfPath = "aa{?}",
        .openOfPathAnswers = true,
        .openOfPathWithA = "aa{bb{}}",
        .openOfPathWithAAnswers = true,
        .setOfPath = "aa{bb=5:7}",
        .setOfDeepPath = "aa{?}",
        .deleteValueOfPath = "aa{bb=5:7}",
        .deleteChildOfPath = "aa{}",
        .setOfEmptyLevel = "x=5:7",
        .nameOfNone = "@",
        .noneIsDeletedByNone = false,
        .oneNameSpace = false,
        .childOfNoName = Nameless::nodeItself,
        .refusedInNames = "",
        .cutInNames = "=",
        .createOfExisting = "AA{}",
        .createOfExistingIsTheSame = false,
        .second = Second::anotherObject,
        .withoutForm = {QXVT_BLOB, QXVT_UNKNOWN},
        .losingForm = {QXVT_UI1},
        .longestText = 32765,
        .emptyTextIsMissing = false,
        .missClears = true,
        .missOfPathClears = false,
        .deleteAnswers = TRUE,
        .deleteOfMissAnswers = TRUE,
        .clear = "",
        .clearOfChild = "x=5:1",
        .clearedGoesOn = true,
        .answers = {&qx_typeid<IRegisterIface>()},
        .enumerationIsLive = false,
    };
}

BackEnd Registry(const char* name, std::unique_ptr<Place> (*make)()) {
    return {
        .name = name,
        .make = make,
        .keeps = true,
        .createOfPath = "aa{bb{}}",
        .openOfPath = "aa{bb{}}",
        .openOfPathAnswers = true,
        .openOfPathWithA = "aa{bb{}}",
        .openOfPathWithAAnswers = true,
        .setOfPath = "aa\\bb=5:7",
        .setOfDeepPath = "aa\\bb\\cc=5:7",
        .deleteValueOfPath = "aa{}",
        .deleteChildOfPath = "aa{}",
        .setOfEmptyLevel = "\\x=5:7",
        .nameOfNone = "",
        .noneIsDeletedByNone = true,
        .oneNameSpace = false,
        .childOfNoName = Nameless::nodeItself,
        .refusedInNames = "",
        .cutInNames = "",
        .createOfExisting = "aa{bb{}}",
        .createOfExistingIsTheSame = false,
        .second = Second::anotherObject,
        .withoutForm = {QXVT_UNKNOWN},
        .losingForm = {},
        .longestText = kNoLimit,
        .emptyTextIsMissing = true,
        .missClears = true,
        .missOfPathClears = true,
        .deleteAnswers = ERROR_SUCCESS,
        .deleteOfMissAnswers = ERROR_FILE_NOT_FOUND,
        .clear = "aa{bb{}}",
        .clearOfChild = "x=5:1 aa{bb{}}",
        .clearedGoesOn = true,
        .answers = {&qx_typeid<IParam>(), &qx_typeid<IRegisterIface>()},
        .enumerationIsLive = false,
    };
}

BackEnd Storage() {
    return {
        .name = "Storage",
        .make = Make<StoragePlace>,
        .keeps = true,
        .createOfPath = "aa{bb{}}",
        .openOfPath = "aa{}",
        .openOfPathAnswers = false,
        .openOfPathWithA = "aa{}",
        .openOfPathWithAAnswers = false,
        .setOfPath = "aa{bb=5:7}",
        .setOfDeepPath = "aa{}",
        .deleteValueOfPath = "aa{bb=5:7}",
        .deleteChildOfPath = "aa{}",
        .setOfEmptyLevel = "",
        .nameOfNone = "@",
        .noneIsDeletedByNone = false,
        .oneNameSpace = true,
        .childOfNoName = Nameless::refused,
        .refusedInNames = "/:!",
        .cutInNames = "",
        .createOfExisting = "AA{}",
        .createOfExistingIsTheSame = false,
        .second = Second::refused,
        .withoutForm = {},
        .losingForm = {},
        .longestText = kNoLimit,
        .emptyTextIsMissing = false,
        .missClears = true,
        .missOfPathClears = false,
        .deleteAnswers = 1,
        .deleteOfMissAnswers = 0,
        .clear = "",
        .clearOfChild = "x=5:1",
        .clearedGoesOn = false,
        .answers = {&qx_typeid<IXStorage>(), &qx_typeid<IRegisterIface>()},
        .enumerationIsLive = false,
    };
}

}  // namespace

const std::vector<BackEnd>& BackEnds() {
    static const std::vector<BackEnd> rows = {
        Memory(),
        IniFile(),
        Registry("CurrentUser", Make<RegistryPlace<CurrentUser>>),
        Registry("LocalMachine", Make<RegistryPlace<LocalMachine>>),
        Storage(),
    };
    return rows;
}
