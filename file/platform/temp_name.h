// Names of temporary files. All of the library's start with the same prefix.
#ifndef QXCORE_FILE_PLATFORM_TEMP_NAME_H
#define QXCORE_FILE_PLATFORM_TEMP_NAME_H

#include <cstddef>

namespace qx {

inline constexpr size_t kTempNameSize = 512;

// Makes an empty new file in the directory and answers its path, or false with GetLastError.
bool MakeTempFile(const char* directory, char (&path)[kTempNameSize]);
// The same in the system's directory for temporary files.
bool MakeSystemTempFile(char (&path)[kTempNameSize]);

// A new temporary file, which goes with the scope unless somebody keeps it.
class TemporaryFile {
public:
    // Where none can be made the path is empty, and GetLastError tells why.
    TemporaryFile() { MakeSystemTempFile(m_path); }
    explicit TemporaryFile(const char* directory) { MakeTempFile(directory, m_path); }
    TemporaryFile(const TemporaryFile&) = delete;
    TemporaryFile& operator=(const TemporaryFile&) = delete;
    ~TemporaryFile();

    explicit operator bool() const { return *m_path; }
    const char* Path() const { return m_path; }
    void Keep() { m_kept = true; }

private:
    char m_path[kTempNameSize];
    bool m_kept = false;
};

}  // namespace qx

#endif
