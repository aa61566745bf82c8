/*
 * The least that another font manager implements to be used by PluginCore: a folder of fonts.
 *
 * The folder is named by FONT_FOLDER. A font is a file in it that bears the font's PostScript name and ends
 * in ".ttf". A font is active while $XDG_DATA_HOME/fonts, where fontconfig looks, has a link to the file.
 *
 * It is built as TarnwickPluginInterfaceX64.so. The core finds that beside a running agent, or where the
 * system's loader looks for libraries (LD_LIBRARY_PATH).
 */
#include <TarnwickPluginInterface.h>
#include <errno.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>
#include <unistd.h>

#define SUCCESS 0u

enum { kLongestPath = 4096, kMostFonts = 4096 };

/* A font's database ID is its place in this list, counted from 1. */
static char* known_names[kMostFonts];

/* 0 when there is no room for one more. */
static uint32_t id_of_font(const char* name) {
    uint32_t id = 0;
    for (; id < kMostFonts && known_names[id] != NULL; ++id) {
        if (strcmp(known_names[id], name) == 0)
            return id + 1;
    }
    if (id == kMostFonts || (known_names[id] = strdup(name)) == NULL)
        return 0;
    return id + 1;
}

static bool name_path(char* path, const char* variable, const char* below, const char* name) {
    const char* folder = getenv(variable);
    return folder != NULL && strchr(name, '/') == NULL &&
           snprintf(path, kLongestPath, "%s%s/%s.ttf", folder, below, name) < kLongestPath;
}

static void set_number(CFMutableDictionaryRef record, const char* key, int64_t value) {
    const CFStringRef name = CFStringCreateWithCString(NULL, key, kCFStringEncodingUTF8);
    const CFNumberRef number = CFNumberCreate(NULL, kCFNumberSInt64Type, &value);
    CFDictionarySetValue(record, name, number);
    CFRelease(number);
    CFRelease(name);
}

/* The record asked for, completed; the caller releases it. */
static CFMutableDictionaryRef copy_record(CFDictionaryRef request, uint32_t id, bool is_active) {
    const CFMutableDictionaryRef record = CFDictionaryCreateMutableCopy(NULL, 0, request);
    set_number(record, kGS_DatabaseIDKey, id);
    set_number(record, kGS_LocationKey, 1);
    set_number(record, kGS_ActivationStateKey,
               is_active ? kFontActivationState_ActivatedByPlugin : kFontActivationState_Inactive);
    return record;
}

static void append_record(CFMutableArrayRef list, CFDictionaryRef request, uint32_t id, bool is_active) {
    CFMutableDictionaryRef record;
    if (list == NULL)
        return;
    record = copy_record(request, id, is_active);
    CFArrayAppendValue(list, record);
    CFRelease(record);
}

static bool get_name(CFDictionaryRef font, char* name) {
    const CFStringRef key = CFStringCreateWithCString(NULL, kGS_PostScriptNameKey, kCFStringEncodingUTF8);
    const CFStringRef value = CFDictionaryGetValue(font, key);
    CFRelease(key);
    return value != NULL && CFStringGetCString(value, name, kLongestPath, kCFStringEncodingUTF8);
}

/* ---- Who is there */

uint32_t GetPluginFacadeInstance(PluginFacadeRef* outFacade) {
    *outFacade = (PluginFacadeRef)known_names; /* there is nothing to keep for a process: any pointer does */
    return SUCCESS;
}

uint32_t ResetPluginFacadeInstance(void) {
    return SUCCESS;
}

uint32_t InitAppInstance(PluginFacadeRef facade, const char* hostAppName, const char* pluginVersion) {
    (void)facade;
    (void)hostAppName;
    (void)pluginVersion;
    return SUCCESS;
}

uint32_t GetIsCoreAgentProcessRunning(PluginFacadeRef facade, bool* outIsRunning) {
    (void)facade;
    *outIsRunning = true;
    return SUCCESS;
}

uint32_t GetIsLoggedIn(PluginFacadeRef facade, bool* outIsLoggedIn) {
    (void)facade;
    *outIsLoggedIn = true;
    return SUCCESS;
}

uint32_t GetRunningStandalone(PluginFacadeRef facade, bool* outIsStandalone) {
    (void)facade;
    *outIsStandalone = true;
    return SUCCESS;
}

/* Without any workgroup the plug-in is off. */
uint32_t GetAllWorkgroupsForUser(PluginFacadeRef facade, CFMutableArrayRef workgroups) {
    const CFMutableDictionaryRef workgroup =
        CFDictionaryCreateMutable(NULL, 0, &kCFTypeDictionaryKeyCallBacks, &kCFTypeDictionaryValueCallBacks);
    (void)facade;
    set_number(workgroup, kGS_WorkgroupIDKey, 1);
    set_number(workgroup, kGS_WorkgroupTypeKey, kWorkgroupType_PersonalLibrary);
    CFArrayAppendValue(workgroups, workgroup);
    CFRelease(workgroup);
    return SUCCESS;
}

/* ---- Fonts of a document */

uint32_t ActivateDocumentFontsByPath(PluginFacadeRef facade, CFStringRef documentPath,
                                     CFArrayRef requestedFonts, CFMutableArrayRef matchedFonts,
                                     CFMutableArrayRef unmatchedFonts, CFMutableArrayRef reportedFonts) {
    CFIndex index = 0;
    (void)facade;
    (void)documentPath;
    for (; index < CFArrayGetCount(requestedFonts); ++index) {
        const CFDictionaryRef font = CFArrayGetValueAtIndex(requestedFonts, index);
        char name[kLongestPath], file[kLongestPath], link_path[kLongestPath];
        uint32_t id = 0;
        bool was_active = false;
        if (!get_name(font, name) || !name_path(file, "FONT_FOLDER", "", name) ||
            !name_path(link_path, "XDG_DATA_HOME", "/fonts", name) || access(file, R_OK) != 0 ||
            (id = id_of_font(name)) == 0) {
            if (unmatchedFonts != NULL)
                CFArrayAppendValue(unmatchedFonts, font);
            continue;
        }
        was_active = symlink(file, link_path) != 0 && errno == EEXIST;
        append_record(matchedFonts, font, id, was_active);
        append_record(reportedFonts, font, id, access(link_path, R_OK) == 0);
    }
    return SUCCESS;
}

uint32_t DeactivateFonts(PluginFacadeRef facade, CFArrayRef fonts, uint64_t context,
                         CFMutableArrayRef deactivatedFonts) {
    const CFStringRef key = CFStringCreateWithCString(NULL, kGS_DatabaseIDKey, kCFStringEncodingUTF8);
    CFIndex index = 0;
    (void)facade;
    (void)context;
    for (; index < CFArrayGetCount(fonts); ++index) {
        const CFDictionaryRef font = CFArrayGetValueAtIndex(fonts, index);
        const CFNumberRef number = CFDictionaryGetValue(font, key);
        char link_path[kLongestPath];
        int64_t id = 0;
        if (number != NULL && CFNumberGetValue(number, kCFNumberSInt64Type, &id) && id > 0 &&
            id <= kMostFonts && known_names[id - 1] != NULL &&
            name_path(link_path, "XDG_DATA_HOME", "/fonts", known_names[id - 1]) && unlink(link_path) == 0)
            append_record(deactivatedFonts, font, (uint32_t)id, false);
    }
    CFRelease(key);
    return SUCCESS;
}
