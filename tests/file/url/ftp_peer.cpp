// One operation on a url in a process of its own, for what the platform's network service does not
// survive.
//
//     ftp_peer info|exists|download|upload|cache URL LOCAL
//
// Says on lines of their own, each with the system's milliseconds behind its first word, which call
// to the platform begins ("call TIME NAME"), that it is back ("back TIME"), and at the end "answer
// TIME ANSWER", where the answer is a number or "raised CODE OPERATION NAME".
#include "file/url/wininet_calls.h"

#include <qxcore.h>

#include <cstdio>
#include <string>

namespace {

void Say(const std::string& word, const std::string& rest = "") {
    std::string line = word + " " + std::to_string(GetTickCount()) + " " + rest + "\n";
    DWORD written;
    WriteFile(GetStdHandle(STD_OUTPUT_HANDLE), line.data(), DWORD(line.size()), &written, nullptr);
}

void TellCall(const char* name) {
    name ? Say("call", name) : Say("back");
}

int Done(const std::string& operation, char* url, const char* local) {
    if (operation == "cache") return Fio_DownloadToCacheFile(url) != nullptr;
    if (operation == "download") return Fio_DownloadToFile(url, local) != 0;
    if (operation == "upload") return Fio_UrlPutFile(url, local) != 0;
    if (operation == "exists") return Fio_IsFileExist(url);
    FioFileInfo info;
    if (operation == "info") return Fio_UrlGetFileInfo(url, &info), 1;
    return -1;
}

std::string AnswerOf(char** arguments) {
    WinInetCalls calls(&TellCall);
    try {
        return std::to_string(Done(arguments[1], arguments[2], arguments[3]));
    } catch (CXFileException& e) {
        return "raised " + std::to_string(e.GetCode()) + " " + std::to_string(e.operation) + " " +
               e.name;
    } catch (CXException& e) {
        return "raised " + std::to_string(e.GetCode());
    }
}

}  // namespace

int main(int, char** arguments) {
    Say("answer", AnswerOf(arguments));
    return 0;
}
