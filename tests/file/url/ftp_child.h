// Operations on urls in processes of their own, which need not come back.
#ifndef QXCORE_TESTS_FILE_URL_FTP_CHILD_H
#define QXCORE_TESTS_FILE_URL_FTP_CHILD_H

#include <qxcore/platform.h>

#include <string>

// One operation under way (see ftp_peer.cpp). Several go side by side.
class FtpChild {
public:
    FtpChild(const std::string& operation, const std::string& url, const std::string& local = "");
    // Ends the process if it has not ended by itself.
    ~FtpChild();
    FtpChild(const FtpChild&) = delete;
    FtpChild& operator=(const FtpChild&) = delete;

    // What the operation answered: "1", "0" or "raised CODE OPERATION NAME". "stays in NAME" when a
    // call to the platform does not return: one that the caller knows to stay is given a moment,
    // any other a minute. How it stays, waiting or with the process at an end, is the platform's.
    // Anything else says what went wrong behind a call that did return.
    std::string Outcome(const std::string& staying = "");
    // Waits until the platform has been called so, for a minute at most.
    bool Calls(const std::string& name);
    void Kill();

private:
    // Takes in what the process has said since.
    void Listen();
    bool Ended() const { return WaitForSingleObject(m_process.hProcess, 0) == WAIT_OBJECT_0; }
    void Take(const std::string& line);

    PROCESS_INFORMATION m_process = {};
    HANDLE m_said = nullptr;
    std::string m_rest;  // the beginning of a line
    std::string m_call;  // of the platform, under way
    std::string m_last;  // the one before
    DWORD m_since;       // of the last word, in the system's milliseconds
    std::string m_answer;
};

#endif
