#include "settings_place.h"

#include <qxcore/exception.h>
#include <qxcore/file.h>
#include <qxcore/fileops.h>
#include <qxcore/platform.h>
#include <qxcore/storage.h>
#include <qxcore/string.h>
#include <qxcore/variant.h>

#include <mbstring.h>
#include <cstring>

namespace {

// A bare name of an ini file would land in the Windows folder.
std::string FullPath(std::string const& path) {
    char full[MAX_PATH] = "";
    GetFullPathNameA(path.c_str(), sizeof full, full, nullptr);
    return full;
}

qx::Reference<IParam> Checked(IParam* tree) {
    if (!tree) throw CXException(QXERR_FORMAT);
    return qx::Reference<IParam>(tree);
}

PlaceLimits InText(const char* endingCharacters) {
    PlaceLimits limits;
    limits.blobs = limits.objects = limits.bytes = false;
    limits.lineTexts = true;
    limits.notInTexts = endingCharacters;
    return limits;
}

PlaceLimits InRegistry() {
    PlaceLimits limits;
    limits.objects = limits.emptyTexts = false;
    return limits;
}

PlaceLimits InStorage() {
    PlaceLimits limits;
    limits.longestName = 31;
    return limits;
}

class IniPlace : public SettingsPlace {
public:
    explicit IniPlace(std::string const& file)
        : SettingsPlace(Checked(new_IParamIniFile(FullPath(file).c_str())), InText("")) {}
};

class RegistryPlace : public SettingsPlace {
public:
    RegistryPlace(HKEY hive, std::string const& key)
        : SettingsPlace(Checked(OpenKey(hive, key)), InRegistry()) {}

private:
    static IParam* OpenKey(HKEY hive, std::string const& key) {
        HKEY made = nullptr;
        if (RegCreateKeyExA(hive, key.c_str(), 0, nullptr, 0, KEY_ALL_ACCESS, nullptr, &made,
                            nullptr) != ERROR_SUCCESS)
            return nullptr;
        RegCloseKey(made);
        return hive == HKEY_CURRENT_USER ? new_IParamCUReg(key.c_str())
                                         : new_IParamLMReg(key.c_str());
    }
};

// The node holds the storages; when it goes, all is committed.
class DocumentPlace : public SettingsPlace {
public:
    explicit DocumentPlace(std::string const& file)
        : SettingsPlace(Checked(OpenSettings(FullPath(file))), InStorage()) {}

private:
    static IParam* OpenSettings(std::string const& file) {
        bool isThere = GetFileAttributesA(file.c_str()) != INVALID_FILE_ATTRIBUTES;
        qx::Reference<IXStorage> document(isThere ? open_Storage(file.c_str(), 0)
                                                  : new_Storage(file.c_str(), QXSTG_TRANSACTED));
        qx::Reference<IParam> root(new_IXStorParam(document.Get()));
        return root->OpenSubParam("settings", 1);
    }
};

std::string BytesOf(std::string const& file) {
    std::string bytes;
    if (GetFileAttributesA(file.c_str()) == INVALID_FILE_ATTRIBUTES) return bytes;
    qx::Reference<IXFile> opened(Fio_Open(file.c_str(), 0));
    bytes.resize(static_cast<size_t>(opened->GetLength()));
    bytes.resize(opened->Read(bytes.data(), static_cast<unsigned>(bytes.size())));
    return bytes;
}

// The file is the old one or the new one, and never half of it.
void PutBytes(std::string const& file, const void* bytes, unsigned size) {
    qx::Reference<IXOutFile> out(Fio_OpenOut(file.c_str(), QXFIO_OUTPUT));
    out->Write(bytes, size);
    out->Commit();
}

class TextPlace : public SettingsPlace {
public:
    explicit TextPlace(std::string const& file)
        : SettingsPlace(Checked(new_MemParam()), InText(";|")), m_file(FullPath(file)) {
        CXString text(BytesOf(m_file).c_str());
        Param_String2Param(text, Tree());
    }
    void Keep() override {
        CXString text;
        Param_Param2String(Tree(), text);
        PutBytes(m_file, static_cast<const char*>(text), static_cast<unsigned>(text.GetSize()));
    }

private:
    std::string m_file;
};

class StreamPlace : public SettingsPlace {
public:
    explicit StreamPlace(std::string const& file)
        : SettingsPlace(Checked(new_MemParam()), PlaceLimits()), m_file(FullPath(file)) {
        std::string bytes = BytesOf(m_file);
        if (bytes.empty()) return;
        qx::Reference<IXStream> stream(new_StreamOnMemory());
        stream->Write(bytes.data(), static_cast<int>(bytes.size()));
        stream->Seek(0, QXSEEK_START);
        LoadParamFromXStream(stream.Get(), Tree());
    }
    void Keep() override {
        qx::Reference<IXStream> stream(new_StreamOnMemory());
        SaveParamToXStream(stream.Get(), Tree());
        auto size = static_cast<unsigned>(stream->GetLength());
        PutBytes(m_file, qx::Ask<IMemBlock>(stream.Get())->GetData(), size);
    }

private:
    std::string m_file;
};

struct Kind {
    const char* prefix;
    std::unique_ptr<SettingsPlace> (*open)(std::string const& rest);
};

const Kind g_kinds[] = {
    {"ini:",
     [](std::string const& file) -> std::unique_ptr<SettingsPlace> {
         return std::make_unique<IniPlace>(file);
     }},
    {"HKCU\\",
     [](std::string const& key) -> std::unique_ptr<SettingsPlace> {
         return std::make_unique<RegistryPlace>(HKEY_CURRENT_USER, key);
     }},
    {"HKLM\\",
     [](std::string const& key) -> std::unique_ptr<SettingsPlace> {
         return std::make_unique<RegistryPlace>(HKEY_LOCAL_MACHINE, key);
     }},
    {"document:",
     [](std::string const& file) -> std::unique_ptr<SettingsPlace> {
         return std::make_unique<DocumentPlace>(file);
     }},
    {"text:",
     [](std::string const& file) -> std::unique_ptr<SettingsPlace> {
         return std::make_unique<TextPlace>(file);
     }},
    {"stream:",
     [](std::string const& file) -> std::unique_ptr<SettingsPlace> {
         return std::make_unique<StreamPlace>(file);
     }},
};

const char* TroubleOfText(PlaceLimits const& limits, const char* text) {
    if (!*text) return limits.emptyTexts ? nullptr : "an empty text";
    // By characters: the second byte of one may be that of "|".
    auto bytes = [](const char* p) { return reinterpret_cast<const unsigned char*>(p); };
    if (_mbspbrk(bytes(text), bytes(limits.notInTexts))) return "a text with ; or |";
    if (!limits.lineTexts) return nullptr;
    if (std::strpbrk(text, "\r\n")) return "a text of several lines";
    return text[std::strlen(text) - 1] == ' ' ? "a text with blanks at its end" : nullptr;
}

// What is wrong with a value in a place, in words; null where nothing is.
const char* Trouble(PlaceLimits const& limits, std::string const& name, CQXVariant const& value) {
    if (name.size() > limits.longestName) return "the name is too long";
    switch (value.type) {
        case QXVT_BLOB:
            return limits.blobs ? nullptr : "a blob";
        case QXVT_UNKNOWN:
            return limits.objects ? nullptr : "an object";
        case QXVT_UI1:
            return limits.bytes ? nullptr : "a number of one byte";
        case QXVT_STRING:
            return TroubleOfText(limits, value.value.string);
        default:
            return nullptr;
    }
}

}  // namespace

std::unique_ptr<SettingsPlace> SettingsPlace::Open(std::string const& text) {
    for (Kind const& kind : g_kinds) {
        size_t size = std::strlen(kind.prefix);
        if (text.compare(0, size, kind.prefix) == 0) return kind.open(text.substr(size));
    }
    return nullptr;
}

std::vector<std::string> SettingsPlace::CannotHold(IParam* tree) const {
    struct Node {
        qx::Reference<IParam> param;
        std::string path;  // with "\" behind it
    };
    std::vector<std::string> troubles;
    std::vector<Node> nodes = {{qx::Hold(tree), ""}};
    while (!nodes.empty()) {
        Node node = nodes.back();
        nodes.pop_back();
        const char* name;
        qx::Reference<CTEnum<const char*>> values(node.param->EnumValues());
        while (values->Next(1, &name, nullptr)) {
            CQXVariant value;
            node.param->GetValue(name, &value);
            if (const char* trouble = Trouble(m_limits, name, value))
                troubles.push_back(node.path + name + " (" + trouble + ")");
        }
        qx::Reference<CTEnum<const char*>> children(node.param->EnumSubParams());
        while (children->Next(1, &name, nullptr)) {
            qx::Reference<IParam> child(node.param->OpenSubParam(name, 0));
            if (std::strlen(name) > m_limits.longestName)
                troubles.push_back(node.path + name + " (the name is too long)");
            else if (child)
                nodes.push_back({child, node.path + name + "\\"});
        }
    }
    return troubles;
}
