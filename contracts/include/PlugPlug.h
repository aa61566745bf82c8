/*
 * The host's panel event service, as a host hands it to RegisterPlugPlug and TryRegisterPlugPlug.
 *
 * Strings are UTF-8, zero-terminated, and owned by the caller for the length of the call. Calls are made
 * from within those of the host, on their thread. Events that the service delivers count as calls of the host: one
 * at a time with all others. A service outlives the library that it was registered with. Its functions return: no
 * exception and no longjmp leaves them.
 */
#ifndef PLUGPLUG_H
#define PLUGPLUG_H

#include <stdint.h>

#ifdef __cplusplus
extern "C" {
#endif

typedef struct PlugPlugEvent {
    const char* type;        /* for example "com.vantorix.PanelToPlugin" */
    int32_t scope;           /* 1 = application */
    const char* appId;       /* identifier of the application that the event is for */
    const char* extensionId; /* may be null */
    const char* data;        /* JSON text */
} PlugPlugEvent;

typedef void (*PlugPlugEventListener)(const PlugPlugEvent* event, void* context);

typedef struct PlugPlugService {
    /* Has `listener` called with `context` for each event of that type. 0 = success. */
    int32_t (*AddEventListener)(struct PlugPlugService* self, const char* type,
                                PlugPlugEventListener listener, void* context);
    /* Sends an event to the panels; it is copied as needed. 0 = success. */
    int32_t (*DispatchEvent)(struct PlugPlugService* self, const PlugPlugEvent* event);
} PlugPlugService;

#ifdef __cplusplus
}
#endif

#endif
