#include "param/registry/registry_param.h"

#include "param/names/each_name.h"
#include "param/names/platform_text.h"
#include "param/registry/name_snapshot.h"
#include "param/registry/registry_value.h"

#include <qxcore/list.h>

#include <cassert>
#include <climits>
#include <cstring>
#include <memory>

namespace qx {

namespace {

constexpr REGSAM kFullAccess = KEY_ALL_ACCESS;
static_assert(kFullAccess == 0xF003F);

constexpr DWORD kNameSize = 513;  // with the terminator; a longer name ends its list

// The names that a listing call of the platform delivers, one for each index from 0 up.
template <class List>
CTEnum<const char*>* Snapshot(HKEY key, List list) {
    auto names = Make<_CTValEnum>();
    char name[kNameSize];
    for (DWORD index = 0;; ++index) {
        DWORD size = kNameSize;
        if (list(key, index, name, &size, nullptr, nullptr, nullptr, nullptr) != ERROR_SUCCESS)
            return names.Detach();
        names->Append(name);
    }
}

// A terminator and no character is how the registry holds an empty text, which reads as missing.
int BindText(char* text, size_t size, tagQXVARIANT* out) {
    return size < 2 ? 0 : QXVariantBindFromValue(QXVT_STRING, &text, out);
}

int SetBytes(HKEY key, const char* name, DWORD type, const void* bytes, size_t size) {
    if (size > ULONG_MAX) return 0;
    auto data = static_cast<const BYTE*>(bytes);
    if (FitsPlatform(name)) RegSetValueExA(key, name, 0, type, data, static_cast<DWORD>(size));
    return 1;
}

}  // namespace

// The way from a node down to the key below it that is visited, as deep as the registry has keys.
class CRegistryParam::Path {
public:
    struct Level {
        Level(Reference<CRegistryParam> key, const char* name)
            : node(std::move(key)), name(name), subkeys(node->EnumSubParams()) {}

        Reference<CRegistryParam> node;
        CXString name;
        Reference<CTEnum<const char*>> subkeys;  // still to be visited
    };

    // Null at the end of the way.
    Level* Last() const {
        auto last = Tail();
        return last ? *m_levels.GetNext(last) : nullptr;
    }
    void Enter(Reference<CRegistryParam> node, const char* name) {
        auto level = std::make_unique<Level>(std::move(node), name);
        m_levels.AddTail(level.get());
        level.release();
    }
    // Closes the last key and answers its name in the one above it.
    CXString Leave() {
        CXString name = Last()->name;
        m_levels.RemoveAt(Tail());
        return name;
    }

private:
    using Levels = CTPList<Level*>;

    Levels m_levels;

    Levels::position Tail() const { return static_cast<Levels::position>(m_levels.tail); }
};

CRegistryParam::CRegistryParam(RegistryKey key) : m_key(std::move(key)) {
    m_attached.Register(static_cast<IParam*>(this), qx_typeid<IParam>(), 0);
    m_attached.Register(static_cast<IRegisterIface*>(this), qx_typeid<IRegisterIface>(), 0);
}

unsigned CRegistryParam::Release() {
    if (--m_refs != 0) return m_refs;
    m_refs = 1;  // attached objects that go with the table may query and release the node
    delete this;
    return 0;
}

Reference<CRegistryParam> CRegistryParam::Open(HKEY key, const char* name) {
    RegistryKey opened;
    if (!FitsPlatform(name)) return nullptr;
    if (RegOpenKeyExA(key, name, 0, kFullAccess, opened.Out()) != ERROR_SUCCESS) return nullptr;
    return Make<CRegistryParam>(std::move(opened));
}

IParam* CRegistryParam::CreateSubParam(const char* name) {
    if (auto existing = Open(m_key.Get(), name)) existing->Clear();
    if (!FitsPlatform(name)) return nullptr;
    char noClass[] = "";
    RegistryKey created;
    if (RegCreateKeyExA(m_key.Get(), name, 0, noClass, 0, kFullAccess, nullptr, created.Out(),
                        nullptr) != ERROR_SUCCESS)
        return nullptr;
    return new CRegistryParam(std::move(created));
}

IParam* CRegistryParam::OpenSubParam(const char* name, int create) {
    if (auto child = Open(m_key.Get(), name)) return child.Detach();
    return create ? CreateSubParam(name) : nullptr;
}

// The platform removes no key that has subkeys.
void CRegistryParam::DeleteSubParam(const char* name) {
    auto child = Open(m_key.Get(), name);
    if (!child) return;
    child->Empty(Subkeys::go);
    child.Release();
    RegDeleteKeyA(m_key.Get(), name);
}

void CRegistryParam::DeleteAllSubParams() {
    EachName(EnumSubParams(), [this](const char* name) { DeleteSubParam(name); });
}

CTEnum<const char*>* CRegistryParam::EnumSubParams() {
    return Snapshot(m_key.Get(), RegEnumKeyExA);
}

CTEnum<const char*>* CRegistryParam::EnumValues() {
    return Snapshot(m_key.Get(), RegEnumValueA);
}

int CRegistryParam::GetValue(const char* name, tagQXVARIANT* out) {
    assert(out);
    QXVariantClear(out);
    if (!FitsPlatform(name)) return 0;
    DWORD size = 0, type = REG_NONE;
    if (RegQueryValueExA(m_key.Get(), name, nullptr, nullptr, nullptr, &size) != ERROR_SUCCESS)
        return 0;
    ValueBytes value(size_t(size) + 1);  // one more, since a text may come without its terminator
    unsigned char* bytes = value.Data();
    if (RegQueryValueExA(m_key.Get(), name, nullptr, &type, bytes, &size) != ERROR_SUCCESS)
        return 0;
    bytes[size] = 0;
    if (type == REG_SZ) return BindText(reinterpret_cast<char*>(bytes), size, out);
    return ReadBinaryForm(Bytes(bytes, size), out);
}

int CRegistryParam::SetValue(const char* name, const tagQXVARIANT* value) {
    assert(value);
    if (value->type == QXVT_STRING) {
        const char* text = value->value.string ? value->value.string : "";
        return SetBytes(m_key.Get(), name, REG_SZ, text, strlen(text) + 1);
    }
    if (!HasBinaryForm(value->type)) return 0;
    ValueBytes form(BinaryFormSize(*value));
    PutBinaryForm(*value, form.Data());
    return SetBytes(m_key.Get(), name, REG_BINARY, form.Data(), form.Size());
}

int CRegistryParam::DeleteValue(const char* name) {
    return FitsPlatform(name) ? RegDeleteValueA(m_key.Get(), name) : ERROR_INVALID_PARAMETER;
}

void CRegistryParam::DeleteAllValues() {
    EachName(EnumValues(), [this](const char* name) { DeleteValue(name); });
}

void CRegistryParam::Clear() {
    Empty(Subkeys::stay);
}

// Each key is emptied before the one above it.
void CRegistryParam::Empty(Subkeys subkeys) {
    Path path;
    path.Enter(Hold(this), "");
    while (Path::Level* level = path.Last()) {
        const char* name;
        if (level->subkeys->Next(1, &name, nullptr)) {
            if (auto child = Open(level->node->m_key.Get(), name))
                path.Enter(std::move(child), name);
            continue;
        }
        level->node->DeleteAllValues();
        CXString left = path.Leave();
        Path::Level* above = path.Last();
        if (above && subkeys == Subkeys::go) RegDeleteKeyA(above->node->m_key.Get(), left);
    }
}

}  // namespace qx

IParam* new_IParamCUReg(const char* subkey) {
    return qx::CRegistryParam::Open(HKEY_CURRENT_USER, subkey).Detach();
}

IParam* new_IParamLMReg(const char* subkey) {
    return qx::CRegistryParam::Open(HKEY_LOCAL_MACHINE, subkey).Detach();
}
