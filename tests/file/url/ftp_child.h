// Operations on urls in a process of their own, within bounds.
#ifndef QXCORE_TESTS_FILE_URL_FTP_CHILD_H
#define QXCORE_TESTS_FILE_URL_FTP_CHILD_H

#include <string>

// What became of it: what ftp_peer.exe said; "crashed" or "hangs" where it said nothing.
std::string OutcomeOf(const std::string& operation, const std::string& url,
                      const std::string& local, unsigned seconds = 5);

#endif
