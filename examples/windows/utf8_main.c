/* A Windows program gets its arguments as wide text; the thin host takes UTF-8, as all paths in the interface
 * are. */
#include <fcntl.h>
#include <io.h>
#include <stdio.h>
#include <stdlib.h>
#include <windows.h>

int HostMain(int count, char** arguments);

static char* ToUtf8(const wchar_t* text) {
    const int size = WideCharToMultiByte(CP_UTF8, 0, text, -1, NULL, 0, NULL, NULL);
    char* converted = malloc((size_t)size);
    if (converted != NULL)
        WideCharToMultiByte(CP_UTF8, 0, text, -1, converted, size, NULL, NULL);
    return converted;
}

int wmain(int count, wchar_t** wideArguments) {
    char** arguments = calloc((size_t)count + 1, sizeof *arguments);
    int status = EXIT_FAILURE;
    int index = 0;
    if (arguments == NULL)
        return status;
    while (index < count && (arguments[index] = ToUtf8(wideArguments[index])) != NULL)
        ++index;
    _setmode(_fileno(stdout), _O_BINARY);
    if (index == count)
        status = HostMain(count, arguments);
    while (index > 0)
        free(arguments[--index]);
    free(arguments);
    return status;
}
