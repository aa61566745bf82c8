#include "VisualStyles.h"

namespace platform {
namespace {

HANDLE MakeContext() {
    ACTCTXW source{};
    source.cbSize = sizeof source;
    source.dwFlags = ACTCTX_FLAG_HMODULE_VALID | ACTCTX_FLAG_RESOURCE_NAME_VALID;
    source.hModule = ThisModule();
    source.lpResourceName = ISOLATIONAWARE_MANIFEST_RESOURCE_ID;
    return CreateActCtxW(&source);
}

/// Lives to process end, like the module.
HANDLE Context() {
    static const HANDLE context = MakeContext();
    return context;
}

}  // namespace

HMODULE ThisModule() {
    HMODULE module = nullptr;
    GetModuleHandleExW(GET_MODULE_HANDLE_EX_FLAG_FROM_ADDRESS | GET_MODULE_HANDLE_EX_FLAG_UNCHANGED_REFCOUNT,
                       reinterpret_cast<const wchar_t*>(&ThisModule), &module);
    return module;
}

ScopedVisualStyles::ScopedVisualStyles()
    : mIsActive(Context() != INVALID_HANDLE_VALUE && ActivateActCtx(Context(), &mCookie) != 0) {}

ScopedVisualStyles::~ScopedVisualStyles() {
    if (mIsActive)
        DeactivateActCtx(0, mCookie);
}

}  // namespace platform
