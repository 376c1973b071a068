#include "settings.h"

#include <qxcore/variant.h>

#include <algorithm>
#include <cstring>

namespace {

constexpr size_t kRecentDocuments = 4;

qx::Reference<IParam> Child(IParam* tree, const char* name) {
    return qx::Reference<IParam>(tree->OpenSubParam(name, 1));
}

// The value of that name and type; type 0 where there is none.
CQXVariant Get(IParam* tree, const char* name, unsigned short type) {
    CQXVariant value;
    if (!tree || !tree->GetValue(name, &value) || value.type != type) value.Clear();
    return value;
}

void GetText(IParam* tree, const char* name, std::string& text) {
    CQXVariant value = Get(tree, name, QXVT_STRING);
    if (value.type == QXVT_STRING) text = value.value.string;
}

void Put(IParam* tree, const char* name, CQXVariant const& value) {
    if (tree) tree->SetValue(name, &value);
}

}  // namespace

void Settings::Read(IParam* tree) {
    CQXVariant rectangle = Get(Child(tree, "window").Get(), "place", QXVT_RECT);
    if (rectangle.type == QXVT_RECT) place = rectangle.value.rect;

    qx::Reference<IParam> list = Child(tree, "list");
    GetText(list.Get(), "sort", sort);
    GetText(list.Get(), "filter", filter);
    CQXVariant bytes = Get(list.Get(), "columns", QXVT_BLOB);
    if (bytes.type == QXVT_BLOB && bytes.value.blob.size == sizeof columns)
        std::memcpy(columns.data(), bytes.value.blob.data, sizeof columns);

    qx::Reference<IParam> documents = Child(tree, "recent");
    for (size_t i = recent.size(); i < kRecentDocuments; ++i) {
        std::string address;
        GetText(documents.Get(), std::to_string(i + 1).c_str(), address);
        if (!address.empty()) recent.push_back(address);
    }

    CQXVariant object = Get(Child(tree, "pinned").Get(), "note", QXVT_UNKNOWN);
    if (object.type == QXVT_UNKNOWN) note = qx::Hold(object.value.unknown);
}

void Settings::Write(IParam* tree) const {
    Put(Child(tree, "window").Get(), "place", CQXVariant(place));

    qx::Reference<IParam> list = Child(tree, "list");
    Put(list.Get(), "sort", CQXVariant(sort.c_str()));
    Put(list.Get(), "filter", CQXVariant(filter.c_str()));
    std::array<int, 3> numbers = columns;
    Put(list.Get(), "columns", CQXVariant(tagQXBLOB{sizeof numbers, numbers.data()}));

    qx::Reference<IParam> documents = Child(tree, "recent");
    if (documents) documents->DeleteAllValues();  // there may have been more
    for (size_t i = 0; i < recent.size(); ++i)
        Put(documents.Get(), std::to_string(i + 1).c_str(), CQXVariant(recent[i].c_str()));

    if (note) Put(Child(tree, "pinned").Get(), "note", CQXVariant(note.Get()));
}

void Settings::Remember(std::string const& address) {
    recent.erase(std::remove(recent.begin(), recent.end(), address), recent.end());
    recent.insert(recent.begin(), address);
    if (recent.size() > kRecentDocuments) recent.pop_back();
}
