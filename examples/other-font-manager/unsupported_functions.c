/*
 * Every function of the interface that font_manager.c does not have: the core binds all of them, and takes
 * this answer for "not here".
 */
#include <TarnwickPluginInterface.h>

#define NOT_IMPLEMENTED 0x08000000u

#pragma GCC diagnostic ignored "-Wunused-parameter"
#define UNSUPPORTED(name, parameters)                \
    __attribute__((weak)) uint32_t name parameters { \
        return NOT_IMPLEMENTED;                      \
    }
TARNWICK_PLUGIN_FUNCTIONS(UNSUPPORTED)
