#include "file/file_fixture.h"

#include <cstring>
#include <ostream>

namespace {

HANDLE OpenOrFail(const std::string& path, DWORD access, DWORD creation) {
    HANDLE file =
        CreateFileA(path.c_str(), access, FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE,
                    nullptr, creation, FILE_ATTRIBUTE_NORMAL, nullptr);
    EXPECT_NE(file, INVALID_HANDLE_VALUE) << path << " error " << GetLastError();
    return file;
}

}  // namespace

std::vector<std::string> FileTest::NamesIn(const std::string& directory) {
    std::vector<std::string> names;
    WIN32_FIND_DATAA found;
    HANDLE search = FindFirstFileA((directory + "\\*").c_str(), &found);
    if (search == INVALID_HANDLE_VALUE) return names;
    do {
        std::string name = found.cFileName;
        if (name != "." && name != "..") names.push_back(name);
    } while (FindNextFileA(search, &found));
    FindClose(search);
    std::sort(names.begin(), names.end());
    return names;
}

DeepDirectory::DeepDirectory(const std::string& below, size_t length) {
    std::wstring path = L"\\\\?\\" + std::wstring(below.begin(), below.end());
    for (int level = 0; level == 0 || path.size() < length; ++level) {
        path += L"\\of" + std::to_wstring(length) +
                std::wstring(std::clamp<size_t>(length - path.size(), 6, 60) - 5, L'd');
        EXPECT_TRUE(CreateDirectoryW(path.c_str(), nullptr)) << GetLastError();
        m_levels.push_back(path);
    }
}

DeepDirectory::~DeepDirectory() {
    for (; !m_levels.empty(); m_levels.pop_back()) {
        EXPECT_TRUE(RemoveDirectoryW(m_levels.back().c_str())) << GetLastError();
    }
}

bool DeepDirectory::IsEmpty() const {
    WIN32_FIND_DATAW found;
    HANDLE search = FindFirstFileW((m_levels.back() + L"\\*").c_str(), &found);
    if (search == INVALID_HANDLE_VALUE) return false;
    int names = 1;
    while (FindNextFileW(search, &found)) ++names;
    FindClose(search);
    return names == 2;  // "." and ".."
}

std::string ContentOf(const std::string& path) {
    HANDLE file = OpenOrFail(path, GENERIC_READ, OPEN_EXISTING);
    std::string content(GetFileSize(file, nullptr), '\0');
    DWORD read = 0;
    EXPECT_TRUE(ReadFile(file, content.data(), DWORD(content.size()), &read, nullptr));
    EXPECT_EQ(read, content.size());
    CloseHandle(file);
    return content;
}

unsigned long long SizeOnDisk(const std::string& path) {
    WIN32_FILE_ATTRIBUTE_DATA data = {};
    EXPECT_TRUE(GetFileAttributesExA(path.c_str(), GetFileExInfoStandard, &data));
    return (static_cast<unsigned long long>(data.nFileSizeHigh) << 32) | data.nFileSizeLow;
}

void Overwrite(const std::string& path, const std::string& content) {
    HANDLE file = OpenOrFail(path, GENERIC_WRITE, CREATE_ALWAYS);
    DWORD written = 0;
    EXPECT_TRUE(WriteFile(file, content.data(), DWORD(content.size()), &written, nullptr));
    EXPECT_EQ(written, content.size());
    CloseHandle(file);
}

void SetReadOnly(const std::string& path, bool on) {
    EXPECT_TRUE(
        SetFileAttributesA(path.c_str(), on ? FILE_ATTRIBUTE_READONLY : FILE_ATTRIBUTE_NORMAL));
}

DWORD TryOpen(const std::string& path, DWORD access, DWORD sharing) {
    HANDLE file = CreateFileA(path.c_str(), access, sharing, nullptr, OPEN_EXISTING, 0, nullptr);
    if (file == INVALID_HANDLE_VALUE) return GetLastError();
    CloseHandle(file);
    return 0;
}

std::string Pattern(size_t size, unsigned seed) {
    std::string text(size, '\0');
    unsigned long long state = seed * 0x9E3779B97F4A7C15ull + 1;
    for (size_t i = 0; i < size; ++i) {
        state = state * 6364136223846793005ull + 1442695040888963407ull;
        text[i] = char(state >> 56);
    }
    return text;
}

void PrintTo(const Failure& failure, std::ostream* out) {
    *out << "code " << failure.code << ", operation " << failure.operation << ", name "
         << failure.name;
}

Peer::Peer(const std::string& arguments) {
    SECURITY_ATTRIBUTES inherit = {sizeof inherit, nullptr, TRUE};
    HANDLE peerOut, peerIn;
    CreatePipe(&m_fromPeer, &peerOut, &inherit, 0);
    CreatePipe(&peerIn, &m_toPeer, &inherit, 0);
    SetHandleInformation(m_fromPeer, HANDLE_FLAG_INHERIT, 0);
    SetHandleInformation(m_toPeer, HANDLE_FLAG_INHERIT, 0);
    char program[MAX_PATH];
    GetModuleFileNameA(nullptr, program, MAX_PATH);
    *strrchr(program, '\\') = 0;
    std::string command = "\"" + std::string(program) + "\\file_peer.exe\" " + arguments;
    STARTUPINFOA start = {};
    start.cb = sizeof start;
    start.dwFlags = STARTF_USESTDHANDLES;
    start.hStdInput = peerIn;
    start.hStdOutput = peerOut;
    start.hStdError = GetStdHandle(STD_ERROR_HANDLE);
    EXPECT_TRUE(CreateProcessA(nullptr, command.data(), nullptr, nullptr, TRUE, 0, nullptr, nullptr,
                               &start, &m_process))
        << command << " error " << GetLastError();
    CloseHandle(peerIn);
    CloseHandle(peerOut);
}

Peer::~Peer() {
    Kill();
    CloseHandle(m_fromPeer);
    if (m_toPeer) CloseHandle(m_toPeer);
    CloseHandle(m_process.hThread);
    CloseHandle(m_process.hProcess);
}

bool Peer::WaitForWord() {
    char word = 0;
    DWORD read = 0;
    return ReadFile(m_fromPeer, &word, 1, &read, nullptr) && read == 1;
}

void Peer::Continue() {
    CloseHandle(m_toPeer);
    m_toPeer = nullptr;
}

void Peer::Kill() {
    TerminateProcess(m_process.hProcess, 9);
    WaitForSingleObject(m_process.hProcess, INFINITE);
}

DWORD Peer::ExitCode() {
    WaitForSingleObject(m_process.hProcess, INFINITE);
    DWORD code = 0;
    GetExitCodeProcess(m_process.hProcess, &code);
    return code;
}
