#include "file/scheme.h"

#include "file/local_scheme.h"
#include "file/url_scheme.h"
#include "file/xmemfile.h"

const FileScheme& SchemeOf(const char* path) {
    static constexpr const FileScheme* kSchemes[] = {&g_memoryScheme, &g_urlScheme};
    for (const FileScheme* scheme : kSchemes) {
        if (scheme->serves(path)) return *scheme;
    }
    return g_localScheme;
}
