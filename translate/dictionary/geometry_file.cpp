#include "translate/dictionary/dictionary.h"

#include "param/names/each_name.h"

#include <qxcore/exception.h>
#include <qxcore/param.h>
#include <qxcore/reference.h>

#include <cstdlib>
#include <memory>

namespace qx {

namespace {

// The child, or nothing.
Reference<IParam> Open(IParam* node, const char* name) {
    return Reference<IParam>(node->OpenSubParam(name, 0));
}

// The context key of a dialog, as MakeResourceKey writes it; the name of one with a number is "#"
// and the number.
CXString DialogKey(const char* module, const char* dialog) {
    CXString key;
    key.Format(*dialog == '#' ? "%s#%d%s\xFD\xFD" : "%s#%d#%s\xFD\xFD", module, QXKEY_DIALOG,
               dialog);
    return key;
}

void ReadDialogSize(IParam* dialog, QXDlgPos& geometry) {
    CQXVariant value;
    if (dialog->GetValue("Dialog Size", &value) && value.type == QXVT_SIZE)
        geometry.m_Size = value.value.size;
}

// A name that is no number counts as control 0. Values that are no rectangle, the dialog's size
// among them, are passed over.
void ReadControl(IParam* dialog, const char* name, QXDlgPos& geometry) {
    CQXVariant value;
    if (!dialog->GetValue(name, &value) || value.type != QXVT_RECT) return;
    const tagRECT& edges = value.value.rect;
    CIRect deltas = {edges.left, edges.top, edges.right, edges.bottom};
    geometry.m_Rects.SetAt(static_cast<unsigned>(atoi(name)), deltas);
}

void ReadDialog(CWld& dictionary, IParam* dialog, const char* key) {
    CTEnum<const char*>* values = dialog->EnumValues();
    if (!values) return;
    Reference<CTEnum<const char*>> walk(values);
    auto geometry = std::make_unique<QXDlgPos>();
    ReadDialogSize(dialog, *geometry);
    qx::EachName(walk.Detach(),
                 [&](const CXString& name) { ReadControl(dialog, name, *geometry); });
    if (dictionary.m_DlgPos.SetAt(HashResourceKey(key), geometry.get())) geometry.release();
}

void ReadModule(CWld& dictionary, IParam* tree, const char* module) {
    Reference<IParam> node = Open(tree, module);
    if (!node) return;
    Reference<IParam> dialogs = Open(node.Get(), "Dialogs");
    if (!dialogs) return;
    qx::EachName(dialogs->EnumSubParams(), [&](const CXString& name) {
        if (Reference<IParam> dialog = Open(dialogs.Get(), name)) {
            ReadDialog(dictionary, dialog.Get(), DialogKey(module, name));
        }
    });
}

void ReadDialogs(CWld& dictionary, IParam* tree) {
    qx::EachName(tree->EnumSubParams(),
                 [&](const CXString& name) { ReadModule(dictionary, tree, name); });
}

}  // namespace

int ReadDlgFile(CWld& dictionary, const char* path) {
    Reference<IParam> tree(new_MemParam());
    try {
        if (!Param_IniFile2Param(path, tree.Get())) return 0;
    } catch (CXFileException&) {
        return 0;
    }
    ReadDialogs(dictionary, tree.Get());
    return 1;
}

}  // namespace qx
