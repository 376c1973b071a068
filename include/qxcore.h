// Everything a host or a plug-in needs. Each subject also has a header of its own under qxcore/.
#ifndef QXCORE_H
#define QXCORE_H

#include <qxcore/attached.h>
#include <qxcore/blob.h>
#include <qxcore/dictionary.h>
#include <qxcore/document.h>
#include <qxcore/enum.h>
#include <qxcore/exception.h>
#include <qxcore/file.h>
#include <qxcore/fileops.h>
#include <qxcore/heap.h>
#include <qxcore/list.h>
#include <qxcore/listitem.h>
#include <qxcore/lock.h>
#include <qxcore/map.h>
#include <qxcore/observer.h>
#include <qxcore/param.h>
#include <qxcore/persist.h>
#include <qxcore/platform.h>
#include <qxcore/progress.h>
#include <qxcore/property.h>
#include <qxcore/reference.h>
#include <qxcore/registry.h>
#include <qxcore/services.h>
#include <qxcore/storage.h>
#include <qxcore/stream.h>
#include <qxcore/string.h>
#include <qxcore/string_enum.h>
#include <qxcore/thread.h>
#include <qxcore/translation.h>
#include <qxcore/typeid.h>
#include <qxcore/unknown.h>
#include <qxcore/url.h>
#include <qxcore/variant.h>
#include <qxcore/wide_string.h>

#endif
