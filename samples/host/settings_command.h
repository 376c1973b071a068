// The parts of the command line that treat of settings without a window:
//
//     host --settings PLACE [--plugin FILE] --remember    stores those of a first run
//     host --settings PLACE [--plugin FILE] --list        prints them
//     host --settings-copy FROM TO [--plugin FILE]        copies them, and says before what is lost
//     host --settings-compare A B                         whether each has all that the other has
//
// settings_place.h tells what a PLACE is.
#ifndef HOST_SETTINGS_COMMAND_H
#define HOST_SETTINGS_COMMAND_H

// Whether the command line is one of these.
bool IsSettingsCommand(int count, char** words);

// The answer is the exit code: 0, or 2 with one line on the standard error.
int RunSettingsCommand(int count, char** words);

#endif
