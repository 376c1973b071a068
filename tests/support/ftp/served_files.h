// The FTP server that a test program runs beside, and the files that it serves.
#ifndef QXCORE_TESTS_SUPPORT_FTP_SERVED_FILES_H
#define QXCORE_TESTS_SUPPORT_FTP_SERVED_FILES_H

#include <string>
#include <vector>

// Starts each test with nothing served and no fault. The program must have been started by
// tests/support/with_ftp_server; without it every test fails with a word about that.
class ServedFiles {
public:
    ServedFiles();
    ServedFiles(const ServedFiles&) = delete;
    ServedFiles& operator=(const ServedFiles&) = delete;
    ~ServedFiles();

    static inline const std::string kHost = "127.0.0.1";
    // A faulty server has several doors, from 1 on, which may fail in different ways at the same
    // time. All users come in by the first; "user" may take another one.
    static constexpr int kDoors = 24;
    // A url of the server; the user is "user" (all rights), "reader" or empty (anonymous, reading
    // only).
    static std::string Url(const std::string& name, const std::string& user = "user", int door = 1);
    // What stands behind it: directories in the name are divided by '\'.
    std::string PathOf(const std::string& name) const { return m_files + "\\" + name; }
    std::string Put(const std::string& name, const std::string& bytes) const;
    void MakeDirectory(const std::string& name) const;
    bool Has(const std::string& name) const;
    std::string ContentOf(const std::string& name) const;
    std::vector<std::string> Names(const std::string& directory = "") const;

    // Lines that the proxy reads when a user comes in by the door; only in programs with a faulty
    // server. Those about the greeting belong to the first door, and hold for every connection.
    void SetFault(const std::string& lines, int door = 1) const;
    // A file beside the served ones, as the proxy names it.
    std::string PutAside(const std::string& name, const std::string& bytes) const;

    // What has reached the server since the test began: the commands, and "connected" and "gone".
    std::vector<std::string> Log() const;
    // How many of the log's lines start so.
    int Count(const std::string& start) const;
    // Waits, for half a minute at most, until every connection has ended and the server has closed
    // its files.
    bool AllGone() const;

private:
    std::string FaultsOf(int door) const;

    std::string m_directory;
    std::string m_files;
    size_t m_logStart = 0;
};

#endif
