// Everything that an instance of CTString is made of.
#ifndef QXCORE_STRINGS_STRING_MEMBERS_H
#define QXCORE_STRINGS_STRING_MEMBERS_H

#include "strings/string_access.h"
#include "strings/string_buffer.h"
#include "strings/string_change.h"
#include "strings/string_format.h"
#include "strings/string_path.h"

#endif
