#include "param/ini_file/ini_file_param.h"

#include "param/ini_file/child_list.h"
#include "param/ini_file/profile.h"
#include "param/ini_text/cut_text.h"
#include "param/ini_text/ini_value.h"
#include "param/names/each_name.h"
#include "param/names/path.h"
#include "param/names/platform_text.h"
#include "param/names/walk_stack.h"

#include <qxcore/exception.h>
#include <qxcore/fileops.h>
#include <qxcore/string_enum.h>

#include <cassert>
#include <utility>

namespace qx {

namespace {

constexpr char kRoot[] = "\\";
constexpr char kMarkerName[] = "@";
constexpr char kMarkerText[] = "e";

// One buffer for each kind of operation, shared by all nodes: they serve one thread at a time.
constinit ProfileBlock g_childTest, g_sections, g_value, g_keys;
constinit char g_valueText[kPlatformTextSize + 1] = {};

// A path of a value cut in two at its last delimiter. The path's size has a limit.
std::optional<SplitName> SplitValuePath(const char* name) {
    constexpr size_t kSize = 8192;
    static char path[kSize];
    if (!name) return std::nullopt;
    Characters::OfRuntime().CopyWhole(path, sizeof path, name);
    return SplitAtLast(path);
}

CTEnum<const char*>* EnumBlock(const char* block, IParam* owner) {
    return new _CZeroDelimitedStringsEnum<char>(block, owner);
}

}  // namespace

CIniFileParam::CIniFileParam(const char* file) : m_file(file), m_section(kRoot) {
    Begin();
}

CIniFileParam::CIniFileParam(CIniFileParam& parent, const CXString& section)
    : m_parent(Hold<IParam>(&parent)),
      m_parentNode(&parent),
      m_file(parent.m_file),
      m_section(section) {
    Begin();
}

void CIniFileParam::Begin() {
    m_attached.Register(static_cast<IRegisterIface*>(this), qx_typeid<IRegisterIface>(), 0);
    if (g_value.Read(m_section, kMarkerName, m_file)) return;
    MakeFolder();
    WriteMarker();
}

// Whether the folder can be made shows where the file is written.
void CIniFileParam::MakeFolder() const {
    try {
        Fio_CreateDirectory(m_file.FilePath());
    } catch (CXMemException&) {
        throw;
    } catch (CXException&) {
    }
}

int CIniFileParam::WriteMarker() const {
    return WriteProfile(m_section, kMarkerName, kMarkerText, m_file);
}

void CIniFileParam::RemoveSection() const {
    WriteProfile(m_section, nullptr, nullptr, m_file);
}

// A child is often the last to hold its parent, and so on up to the root: a chain of any length
// ends here, one node after the other.
unsigned CIniFileParam::Release() {
    if (m_refs > 1) return --m_refs;
    for (CIniFileParam* node = this; node;) {
        Reference<IParam> parent = std::move(node->m_parent);
        CIniFileParam* above = node->m_parentNode;
        delete node;
        node = nullptr;
        if (above && above->m_refs == 1) {
            node = above;
            parent.Detach();
        }
    }
    return 0;
}

bool CIniFileParam::IsRoot() const {
    return strcmp(m_section, kRoot) == 0;
}

CXString CIniFileParam::SectionOf(const char* child) const {
    return IsRoot() ? m_section + child : m_section + kRoot + child;
}

// The child, if its section has a key.
Reference<CIniFileParam> CIniFileParam::Child(const char* name) {
    CXString section = SectionOf(name);
    if (!g_childTest.Read(section, nullptr, m_file)) return nullptr;
    return Reference<CIniFileParam>(new CIniFileParam(*this, section));
}

Reference<CIniFileParam> CIniFileParam::NewChild(const char* name) {
    if (Reference<CIniFileParam> present = Child(name)) present->Clear();
    return Reference<CIniFileParam>(new CIniFileParam(*this, SectionOf(name)));
}

IParam* CIniFileParam::CreateSubParam(const char* name) {
    return NewChild(name ? name : "").Detach();
}

IParam* CIniFileParam::OpenSubParam(const char* name, int create) {
    if (!name) name = "";
    Reference<CIniFileParam> child = Child(name);
    if (!child && create) child = NewChild(name);
    return child.Detach();
}

void CIniFileParam::DeleteSubParam(const char* name) {
    if (Reference<CIniFileParam> child = Child(name ? name : "")) child->Clear();
}

void CIniFileParam::DeleteAllSubParams() {
    EachName(EnumSubParams(), [this](const char* name) { DeleteSubParam(name); });
}

CTEnum<const char*>* CIniFileParam::ListSubParams() {
    g_sections.Read(nullptr, nullptr, m_file);
    return EnumBlock(ListChildren(g_sections.Text(), m_section, IsRoot()), this);
}

int CIniFileParam::GetValue(const char* name, tagQXVARIANT* out) {
    assert(out);
    if (auto path = SplitValuePath(name)) {
        Reference<CIniFileParam> child = Child(path->head);
        return child ? child->GetValue(path->tail, out) : 0;
    }
    bool found = g_value.Read(m_section, ValueName(name), m_file) != 0;
    QXVariantClear(out);
    auto value = tagQXVARIANT();
    if (!found || !ReadIniValue(g_value.Text(), value)) return 0;
    QXVariantCopy(out, &value);
    return 1;
}

int CIniFileParam::SetValue(const char* name, const tagQXVARIANT* value) {
    assert(value);
    if (auto path = SplitValuePath(name)) {
        Reference<CIniFileParam> child = Child(path->head);
        if (!child) child = NewChild(path->head);
        return child->SetValue(path->tail, value);
    }
    CutText text(g_valueText, sizeof g_valueText);
    if (!WriteIniValue(*value, text)) return 0;
    return WriteProfile(m_section, ValueName(name), text.Text(), m_file);
}

// A null name removes the whole section.
int CIniFileParam::DeleteValue(const char* name) {
    return WriteProfile(m_section, name, nullptr, m_file);
}

// The marker was among the values.
void CIniFileParam::DeleteAllValues() {
    EachName(EnumValues(), [this](const char* name) { DeleteValue(name); });
    WriteMarker();
}

CTEnum<const char*>* CIniFileParam::EnumValues() {
    g_keys.Read(m_section, nullptr, m_file);
    return EnumBlock(g_keys.Text(), this);
}

// The children first, then the section, marker included. The node stands over no section then.
void CIniFileParam::Clear() {
    struct Level {
        Reference<CIniFileParam> node;
        Reference<CTEnum<const char*>> children;
    };
    WalkStack<Level> levels;
    auto open = [&](Reference<CIniFileParam> node) {
        Reference<CTEnum<const char*>> children(node->EnumSubParams());
        levels.Push(Level{std::move(node), std::move(children)});
    };
    open(Hold(this));
    while (Level* level = levels.Top()) {
        const char* name;
        if (level->children->Next(1, &name, nullptr)) {
            if (Reference<CIniFileParam> child = level->node->Child(name)) open(std::move(child));
        } else {
            level->node->RemoveSection();
            levels.Pop();
        }
    }
}

void CIniFileParam::SetParent(IParam* parent) {
    m_parentNode = nullptr;
    m_parent = Hold(parent);
}

IParam* CIniFileParam::GetParent() {
    return m_parent.Share();
}

}  // namespace qx

IParam* new_IParamIniFile(const char* path) {
    try {
        return new qx::CIniFileParam(path);
    } catch (CXMemException&) {
        return nullptr;
    }
}
