/*
 * The least that a host plug-in does with PluginCore: start it, open a document, close it, end it.
 *
 *     IllustratorHost DOCUMENT
 *
 * The program's name matters: the core serves processes that bear the name of a host application.
 */
#include <PluginCoreInterface.h>
#include <stdio.h>
#include <stdlib.h>

/* The plug-in for Illustrator 2025; a plug-in in a file of its own passes that file's path instead. */
static const char kPluginIdentifier[] = "com.vantorix.AutoActivationPlugin.AI29";

/* Makes room for `size` bytes of text, or ends the program. */
static char* make_buffer(size_t size) {
    char* buffer = malloc(size);
    if (buffer == NULL) {
        fprintf(stderr, "out of memory\n");
        exit(1);
    }
    buffer[0] = '\0';
    return buffer;
}

/* Opens the document and prints its fonts; whether that worked. */
static bool open_document(const char* path) {
    size_t matched_size = 1 << 20;
    size_t unmatched_size = 1 << 20;
    char* matched = make_buffer(matched_size);
    char* unmatched = make_buffer(unmatched_size);
    int activated = 0;
    /* No font list: the core reads the font names out of the document. */
    const uint32_t result = HandleOpenExistingDocument(path, NULL, matched, &matched_size, unmatched,
                                                       &unmatched_size, &activated);
    const bool is_opened = result == PLUGINCORE_SUCCESS || result == PLUGINCORE_FONTS_ACTIVATED;
    if (is_opened)
        printf("%d fonts activated\nmatched: %s\nmissing: %s\n", activated, matched, unmatched);
    else
        fprintf(stderr, "opening failed with 0x%08x\n", (unsigned)result);
    free(matched);
    free(unmatched);
    return is_opened;
}

int main(int argc, char** argv) {
    uint32_t version = 0;
    bool is_opened = false;
    if (argc != 2) {
        fprintf(stderr, "usage: %s DOCUMENT (a full path)\n", argv[0]);
        return 2;
    }
    if (InitializePluginCoreInterface(kPluginIdentifier, "") != PLUGINCORE_SUCCESS ||
        GetAPIVersion(&version, PLUGINCORE_INTERFACE_VERSION) != PLUGINCORE_SUCCESS) {
        fprintf(stderr, "the font manager cannot be reached; start it with 'Pellwick serve'\n");
        TerminatePluginCoreInterface();
        return 5;
    }
    is_opened = open_document(argv[1]);
    IdleEvent(); /* a host calls this from its idle loop */
    HandleCloseDocument(argv[1], "");
    TerminatePluginCoreInterface();
    return is_opened ? 0 : 1;
}
