#include "file/local/xfile.h"

#include "file/platform/file_error.h"
#include "file/platform/temp_name.h"

#include <cassert>

namespace qx {

namespace {

uint64_t Chunk() {
    SYSTEM_INFO system;
    GetSystemInfo(&system);
    return uint64_t(system.dwAllocationGranularity) * 2;
}

int ModeOf(int flags) {
    return flags & QXFIO_OUTPUT ? QXOP_WRITE : QXOP_READ;
}

CXString PathOrTempFile(const char* path, int flags) {
    if (path) return path;
    char temp[kTempNameSize];
    if (!MakeSystemTempFile(temp)) RaiseFileError(temp, ModeOf(flags));
    return temp;
}

}  // namespace

CXFile::CXFile(const char* path, int flags) : CXFile(PathOrTempFile(path, flags), flags) {}

CXFile::CXFile(const CXString& path, int flags)
    : CWindowFile(path, ModeOf(flags)), m_ownLock(m_path), m_chunk(Chunk()) {
    OpenHandle(flags);
    LARGE_INTEGER size;
    if (!GetFileSizeEx(m_file.Get(), &size)) RaiseFileError(m_path, m_mode);
    SetSize(uint64_t(size.QuadPart));
    try {
        MapFirst(flags);
    } catch (...) {
        Close();  // an output file that was kept gets its length back
        throw;
    }
}

void CXFile::OpenHandle(int flags) {
    DWORD hint = flags & QXFIO_RANDOM ? FILE_FLAG_RANDOM_ACCESS : FILE_FLAG_SEQUENTIAL_SCAN;
    if (m_mode == QXOP_READ) {
        m_file = KernelHandle(CreateFileA(
            m_path, GENERIC_READ, FILE_SHARE_READ | FILE_SHARE_WRITE, nullptr, OPEN_EXISTING,
            FILE_ATTRIBUTE_READONLY | FILE_ATTRIBUTE_ARCHIVE | hint, nullptr));
    } else {
        DWORD creation = flags & QXFIO_KEEP ? OPEN_EXISTING : CREATE_ALWAYS;
        DWORD attributes = flags & QXFIO_TEMPORARY
                               ? FILE_ATTRIBUTE_TEMPORARY | FILE_FLAG_DELETE_ON_CLOSE
                               : FILE_ATTRIBUTE_ARCHIVE;
        m_file = KernelHandle(CreateFileA(m_path, GENERIC_READ | GENERIC_WRITE, 0, nullptr,
                                          creation, attributes | hint, nullptr));
    }
    if (!m_file) RaiseFileError(m_path, m_mode);
}

void CXFile::MapFirst(int flags) {
    if (m_mode == QXOP_READ) {
        if (Size() == 0) return;  // nothing can be mapped
        if (!CreateMapping(0)) RaiseFileError(m_path, m_mode);
    } else if (!(flags & QXFIO_KEEP)) {
        SetSize(0);
    }
    MapWindow(0);
}

// REQUIRES: nothing is mapped. Length 0 is the file's own.
bool CXFile::CreateMapping(uint64_t length) {
    assert(!m_view);
    DWORD protection = m_mode == QXOP_READ ? PAGE_READONLY : PAGE_READWRITE;
    m_mapping = KernelHandle(CreateFileMappingA(m_file.Get(), nullptr, protection,
                                                DWORD(length >> 32), DWORD(length), nullptr));
    return bool(m_mapping);
}

// After a failure there is no window, and the next access tries again.
void CXFile::MapWindow(uint64_t offset) {
    uint64_t length = m_chunk;
    DWORD access = FILE_MAP_READ;
    if (m_mode == QXOP_READ) {
        length = std::min(length, Size() - offset);
    } else {
        // Only a new mapping makes the file grow.
        access = FILE_MAP_WRITE;
        m_mapping.Close();
        if (!CreateMapping(offset + length)) RaiseFileError(m_path, m_mode);
    }
    if (!m_view.Map(m_mapping, access, offset, size_t(length))) RaiseFileError(m_path, m_mode);
    SetWindow(reinterpret_cast<uintptr_t>(m_view.Base()), offset, length);
}

void CXFile::MoveWindow() {
    uint64_t offset = m_position / m_chunk * m_chunk;
    constexpr uint64_t kFarthest = INT64_MAX;  // of a file's length
    if (offset > kFarthest - m_chunk) Raise(QXERR_DISK_FULL, m_mode);
    if (!Unmap()) RaiseFileError(m_path, m_mode);
    MapWindow(offset);
}

void CXFile::Write(const void* bytes, unsigned count) {
    if (count && m_mode == QXOP_READ) Raise(QXERR_DEVICE, m_mode);
    auto from = static_cast<const char*>(bytes);
    while (count) {
        if (!Shown()) MoveWindow();
        auto part = unsigned(std::min<uint64_t>(Shown(), count));
        if (!GuardedCopy(Cell(), from, part)) Raise(QXERR_DEVICE, m_mode);
        m_position += part;
        if (m_position > Size()) SetSize(m_position);
        from += part;
        count -= part;
    }
}

int CXFile::Flush() {
    return !m_view || FlushViewOfFile(m_view.Base(), 0);
}

bool CXFile::Unmap() {
    SetWindow(0, 0, 0);
    return m_view.Unmap();
}

// Every step runs, whatever the one before said.
bool CXFile::Close() {
    bool unmapped = Unmap();
    bool mappingClosed = m_mapping.Close();
    bool cut = true;
    if (m_mode == QXOP_WRITE) {
        LARGE_INTEGER end;
        end.QuadPart = int64_t(Size());
        cut =
            SetFilePointerEx(m_file.Get(), end, nullptr, FILE_BEGIN) && SetEndOfFile(m_file.Get());
    }
    m_file.Close();
    return unmapped && mappingClosed && cut;
}

// The object is gone also when its file could not be closed as it should.
unsigned CXFile::End() {
    bool closed = Close();
    CXString path = m_path;
    int mode = m_mode;
    delete this;
    if (!closed) throw CXFileException(QXERR_MEMORY, path, mode);
    return 0;
}

}  // namespace qx
