// The program beside which another reader of compound files is tested:
//     storage_param_peer write FILE      a tree with values of several types
//     storage_param_peer read FILE       prints the tree in one line
#include "param/tree_text.h"

#include <cstdio>
#include <cstring>

int main(int argc, char** argv) {
    if (argc != 3) return 2;
    bool writes = strcmp(argv[1], "write") == 0;
    qx::Reference<IXStorage> storage(writes ? new_Storage(argv[2], QXSTG_TRANSACTED)
                                            : open_Storage(argv[2], 1));
    ParamPtr root(new_IXStorParam(storage.Get()));
    if (!writes) {
        puts(TreeText(root.Get()).c_str());
        return 0;
    }
    char bytes[] = {1, 0, 2};
    CQXVariant text("some text"), blob(tagQXBLOB{3, bytes}), real(-2.5);
    SetInt(root.Get(), "", 42);
    root->SetValue("text", &text);
    ParamPtr leaf(root->CreateSubParam("a child\\leaf"));
    leaf->SetValue("blob", &blob);
    leaf->SetValue("real", &real);
    return 0;
}
