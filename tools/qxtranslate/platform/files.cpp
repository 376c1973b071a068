#include "tools/qxtranslate/platform/files.h"

#include <cerrno>
#include <cstdio>
#include <cstring>
#include <filesystem>
#include <memory>

#ifdef _WIN32
#include <process.h>
#else
#include <unistd.h>
#endif

namespace qx {

namespace {

struct Closer {
    void operator()(FILE* file) const { fclose(file); }
};
using File = std::unique_ptr<FILE, Closer>;

std::filesystem::path PathOf(const std::string& utf8) {
    return std::filesystem::path(std::u8string(utf8.begin(), utf8.end()));
}

File Open(const std::string& path, bool writes) {
#ifdef _WIN32
    return File(_wfopen(PathOf(path).c_str(), writes ? L"wb" : L"rb"));
#else
    return File(fopen(path.c_str(), writes ? "wb" : "rb"));
#endif
}

[[noreturn]] void Fail(const std::string& path, const char* what, int error) {
    throw BadInput(path + " " + what + ": " + std::strerror(error));
}

int ProcessId() {
#ifdef _WIN32
    return _getpid();
#else
    return getpid();
#endif
}

// Removes the half-written file unless it has been renamed.
class Aside {
public:
    explicit Aside(const std::string& target)
        : m_path(target + "." + std::to_string(ProcessId()) + ".tmp") {}
    ~Aside() {
        std::error_code ignored;
        if (!m_isDone) std::filesystem::remove(PathOf(m_path), ignored);
    }
    Aside(const Aside&) = delete;
    Aside& operator=(const Aside&) = delete;

    const std::string& Path() const { return m_path; }
    void Rename(const std::string& target) {
        std::error_code error;
        std::filesystem::rename(PathOf(m_path), PathOf(target), error);
        if (error) throw BadInput(target + " cannot be written: " + error.message());
        m_isDone = true;
    }

private:
    std::string m_path;
    bool m_isDone = false;
};

bool WriteAll(FILE* file, std::string_view bytes) {
    return fwrite(bytes.data(), 1, bytes.size(), file) == bytes.size() && fflush(file) == 0;
}

// What fails is told of the file that the user has named.
void WriteFile(const std::string& path, const std::string& named, std::string_view bytes) {
    File file = Open(path, true);
    if (!file) Fail(named, "cannot be written", errno);
    bool isWritten = WriteAll(file.get(), bytes);
    int error = errno;
    isWritten = fclose(file.release()) == 0 && isWritten;
    if (!isWritten) Fail(named, "cannot be written", error ? error : errno);
}

}  // namespace

std::vector<uint8_t> ReadBytes(const std::string& path) {
    std::error_code ignored;
    if (std::filesystem::is_directory(PathOf(path), ignored))
        throw BadInput(path + " cannot be read: it is a folder");
    File file = Open(path, false);
    if (!file) Fail(path, "cannot be read", errno);
    std::vector<uint8_t> bytes;
    auto size = std::filesystem::file_size(PathOf(path), ignored);
    if (!ignored) bytes.reserve(static_cast<size_t>(size) + 1);
    for (;;) {
        size_t at = bytes.size();
        bytes.resize(std::max<size_t>(bytes.capacity(), at + 65536));
        size_t got = fread(bytes.data() + at, 1, bytes.size() - at, file.get());
        bytes.resize(at + got);
        if (!got) break;
    }
    if (ferror(file.get())) Fail(path, "cannot be read", errno);
    return bytes;
}

void WriteResult(const std::string& path, std::string_view bytes) {
    if (path.empty()) {
        if (!WriteAll(stdout, bytes)) Fail("the standard output", "cannot be written", errno);
    } else if (std::error_code ignored; std::filesystem::is_other(PathOf(path), ignored)) {
        WriteFile(path, path, bytes);
    } else {
        Aside aside(path);
        WriteFile(aside.Path(), path, bytes);
        aside.Rename(path);
    }
}

void RequireApart(const std::string& output, const std::vector<std::string>& inputs) {
    for (const std::string& input : inputs) {
        std::error_code ignored;
        if (!output.empty() && !input.empty() &&
            std::filesystem::equivalent(PathOf(output), PathOf(input), ignored))
            throw BadInput(output + " is read by this command, and the result would replace it");
    }
}

std::string FileName(const std::string& path) {
    size_t separator = path.find_last_of("/\\:");
    return separator == std::string::npos ? path : path.substr(separator + 1);
}

}  // namespace qx
