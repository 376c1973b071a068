// The part of the command line that begins with --document: a document made, changed or shown
// without a window.
#ifndef HOST_DOCUMENT_COMMAND_H
#define HOST_DOCUMENT_COMMAND_H

// The answer is the exit code: 0, or 2 with one line on the standard error.
int RunDocumentCommand(int count, char** words);

#endif
