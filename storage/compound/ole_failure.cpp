#include "storage/compound/ole_failure.h"

#include <qxcore/exception.h>

namespace qx {

namespace {

struct StatusRow {
    unsigned status;
    int code;
};

constexpr StatusRow kCodes[] = {
    {0x80030002, QXERR_NOT_FOUND},      // STG_E_FILENOTFOUND
    {0x80030003, QXERR_NOT_FOUND},      // STG_E_PATHNOTFOUND
    {0x80030004, QXERR_TOO_MANY_OPEN},  // STG_E_TOOMANYOPENFILES
    {0x80030005, QXERR_SHARING},        // STG_E_ACCESSDENIED
    {0x80030020, QXERR_SHARING},        // STG_E_SHAREVIOLATION
    {0x80030021, QXERR_SHARING},        // STG_E_LOCKVIOLATION
    {0x80030100, QXERR_SHARING},        // STG_E_INUSE
    {0x80030106, QXERR_SHARING},        // STG_E_SHAREREQUIRED
    {0x80030008, QXERR_MEMORY},         // STG_E_INSUFFICIENTMEMORY
    {0x80030012, QXERR_DISK_FULL},      // STG_E_NOMOREFILES
    {0x80030070, QXERR_DISK_FULL},      // STG_E_MEDIUMFULL
    {0x80030013, QXERR_ACCESS_DENIED},  // STG_E_DISKISWRITEPROTECTED
    {0x80030019, QXERR_DEVICE},         // STG_E_SEEKERROR
    {0x8003001D, QXERR_DEVICE},         // STG_E_WRITEFAULT
    {0x8003001E, QXERR_DEVICE},         // STG_E_READFAULT
    {0x80030103, QXERR_DEVICE},         // STG_E_CANTSAVE
    {0x800300F0, QXERR_UNKNOWN},        // STG_E_PROPSETMISMATCHED
    {0x800300FA, QXERR_UNKNOWN},        // STG_E_ABNORMALAPIEXIT
    {0x800300FD, QXERR_UNKNOWN},        // STG_E_UNKNOWN
    {0x800300FE, QXERR_UNKNOWN},        // STG_E_UNIMPLEMENTEDFUNCTION
    {0x80030104, QXERR_UNKNOWN},        // STG_E_OLDFORMAT
    {0x80030105, QXERR_UNKNOWN},        // STG_E_OLDDLL
    {0x80030108, QXERR_UNKNOWN},        // STG_E_EXTANTMARSHALLINGS
    {0x00030202, QXERR_UNKNOWN},        // STG_S_RETRYNOW
    {0x800300FC, QXERR_BAD_NAME},       // STG_E_INVALIDNAME
    {0x80030201, QXERR_NETWORK},        // STG_E_INCOMPLETE
    {0x80030202, QXERR_NETWORK},        // STG_E_TERMINATED
};

}  // namespace

int CodeOfStatus(HRESULT status) {
    for (const StatusRow& row : kCodes) {
        if (row.status == static_cast<unsigned>(status)) return row.code;
    }
    return QXERR_FORMAT;
}

}  // namespace qx
