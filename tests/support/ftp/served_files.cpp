#include "support/ftp/served_files.h"

#include <gtest/gtest.h>
#include <qxcore/platform.h>

#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <fstream>

namespace fs = std::filesystem;

namespace {

std::string BytesOf(const std::string& path) {
    std::ifstream file(path, std::ios::binary);
    std::string bytes;
    std::vector<char> part(1 << 16);
    while (file.read(part.data(), std::streamsize(part.size())) || file.gcount())
        bytes.append(part.data(), size_t(file.gcount()));
    return bytes;
}

void WriteBytes(const std::string& path, const std::string& bytes) {
    std::ofstream file(path, std::ios::binary);
    file << bytes;
    file.close();
    EXPECT_TRUE(file) << path;
}

}  // namespace

ServedFiles::ServedFiles() {
    const char* directory = getenv("QXCORE_FTP_DIRECTORY");
    if (!directory) {
        ADD_FAILURE() << "no FTP server: start the program through tests/support/with_ftp_server";
        return;
    }
    m_directory = directory;
    m_files = m_directory + "\\files";
    m_logStart = BytesOf(m_directory + "\\log").size();
}

ServedFiles::~ServedFiles() {
    if (m_directory.empty()) return;
    for (int door = 1; door <= kDoors; ++door) fs::remove(FaultsOf(door));
    for (auto& entry : fs::directory_iterator(m_files)) fs::remove_all(entry.path());
}

std::string ServedFiles::Url(const std::string& name, const std::string& user, int door) {
    std::string login = user + (door == 1 ? "" : std::to_string(door)) + ":secret@";
    return "ftp://" + (user.empty() ? "" : login) + kHost + "/" + name;
}

std::string ServedFiles::Put(const std::string& name, const std::string& bytes) const {
    WriteBytes(PathOf(name), bytes);
    return PathOf(name);
}

void ServedFiles::MakeDirectory(const std::string& name) const {
    fs::create_directory(PathOf(name));
}

bool ServedFiles::Has(const std::string& name) const {
    return fs::exists(PathOf(name));
}

std::string ServedFiles::ContentOf(const std::string& name) const {
    return BytesOf(PathOf(name));
}

std::vector<std::string> ServedFiles::Names(const std::string& directory) const {
    std::vector<std::string> names;
    for (auto& entry : fs::directory_iterator(PathOf(directory)))
        names.push_back(entry.path().filename().string());
    std::sort(names.begin(), names.end());
    return names;
}

std::string ServedFiles::FaultsOf(int door) const {
    return m_directory + "\\fault." + std::to_string(door);
}

void ServedFiles::SetFault(const std::string& lines, int door) const {
    WriteBytes(FaultsOf(door), lines);
}

std::string ServedFiles::PutAside(const std::string& name, const std::string& bytes) const {
    std::string path = m_directory + "\\" + name;
    WriteBytes(path, bytes);
    path.erase(0, 2);  // the drive
    std::replace(path.begin(), path.end(), '\\', '/');
    return path;
}

std::vector<std::string> ServedFiles::Log() const {
    std::string text = BytesOf(m_directory + "\\log").substr(m_logStart);
    std::vector<std::string> lines;
    for (size_t at = 0, end; (end = text.find('\n', at)) != std::string::npos; at = end + 1)
        lines.push_back(text.substr(at, end - at));
    return lines;
}

int ServedFiles::Count(const std::string& start) const {
    auto log = Log();
    return int(std::count_if(log.begin(), log.end(), [&](const std::string& line) {
        return line.compare(0, start.size(), start) == 0;
    }));
}

bool ServedFiles::AllGone() const {
    for (int wait = 0; wait < 3000; ++wait) {
        if (Count("connected") == Count("gone")) return true;
        Sleep(10);
    }
    return false;
}
