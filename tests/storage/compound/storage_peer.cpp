// The program beside which another reader of compound files is tested:
//     storage_peer write FILE      writes a tree of streams, sub-storages and properties
//     storage_peer read FILE       prints every stream of a file as "path: bytes in hexadecimal"
#include <qxcore.h>

#include <cstdio>
#include <cstring>
#include <string>

using qx::Reference;

namespace {

void Put(IXStorage* storage, const char* name, const std::string& bytes) {
    Reference<IXStream> stream(storage->CreateStream(name));
    stream->Write(bytes.data(), static_cast<int>(bytes.size()));
}

void WriteTree(const char* path) {
    Reference<IXStorage> root(new_Storage(path, QXSTG_TRANSACTED));
    Put(root.Get(), "empty", "");
    Put(root.Get(), "small", "a few bytes\n");
    Put(root.Get(), "large", std::string(4095, 'a') + std::string(100000, 'b'));

    Reference<IXStorage> child(root->CreateStorage("child", 0));
    Reference<IXStorage> grandchild(child->CreateStorage("grand child", 0));
    Reference<IXStream> stream(grandchild->CreateStream("values"));
    CQXVariant number(-2), text("text");
    stream->WriteVariant(&number);
    stream->WriteVariant(&text);
    stream->WriteDouble(1.0);

    Reference<IQXProperty> properties = qx::Ask<IQXProperty>(root.Get());
    // Wine leaves the last text of a set unpadded, which gsf refuses; these two fill their last
    // four bytes.
    CQXVariant title("A new title"), company("The company");
    properties->SetProperty("Title", title);
    properties->SetProperty("Company", company);
}

void PrintStream(IXStorage* storage, const std::string& prefix, const char* name) {
    printf("%s%s:", prefix.c_str(), name);
    Reference<IXStream> stream(storage->OpenStream(name));
    unsigned char byte;
    while (stream->Read(&byte, 1) == 1) printf(" %02x", byte);
    printf("\n");
}

void PrintTree(IXStorage* storage, const std::string& prefix) {
    const char* name;
    Reference<CTEnum<const char*>> streams(storage->EnumStreams());
    while (streams->Next(1, &name, nullptr)) PrintStream(storage, prefix, name);
    Reference<CTEnum<const char*>> storages(storage->EnumStorages());
    while (storages->Next(1, &name, nullptr)) {
        Reference<IXStorage> child(storage->OpenStorage(name));
        PrintTree(child.Get(), prefix + name + "/");
    }
}

}  // namespace

int main(int argc, char** argv) {
    if (argc != 3) return 2;
    try {
        if (strcmp(argv[1], "write") == 0) {
            WriteTree(argv[2]);
        } else {
            Reference<IXStorage> root(open_Storage(argv[2], 1));
            PrintTree(root.Get(), "");
        }
    } catch (CXException& e) {
        fprintf(stderr, "code %d\n", e.GetCode());
        return 1;
    }
    return 0;
}
