// What the plug-in of the module boundary tests exports. A program loads it while it runs.
#ifndef QXCORE_TESTS_CONTAINERS_COLLECTIONS_MODULE_H
#define QXCORE_TESTS_CONTAINERS_COLLECTIONS_MODULE_H

#include <qxcore.h>

using ObjectMap = CTMap<const char*, IQXUnknown*>;
using NameList = CTPList<const char*>;

struct CollectionsModule {
    // Enumerators of "one", "two", "three" over collections that nobody else holds.
    CTEnum<const char*>* (*listNames)();
    CTEnum<const char*>* (*mapNames)();
    // Over the pieces of a text between blanks.
    CTEnum<const char*>* (*pieces)(const char* text, IQXUnknown* owner);
    // Walks from the start, lets go of the enumerator and answers how many names there were.
    unsigned (*walk)(CTEnum<const char*>* names);
    // Whether the object answers the module's own record of CTEnum<const char*>.
    int (*asksForNames)(IQXUnknown* object);

    ObjectMap* (*newMap)();
    int (*store)(ObjectMap* map, const char* name, IQXUnknown* object);
    void (*deleteMap)(ObjectMap* map);
    NameList* (*newList)();
    void (*deleteList)(NameList* list);
};

// Exported as "Collections".
using GetCollectionsModule = const CollectionsModule* (*)();

#endif
