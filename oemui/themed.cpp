#include "oemui/themed.h"

#include "oemui/module.h"

namespace {

// Made once per process from the manifest in this DLL; kept for the life of the process like the
// module itself.
HANDLE PluginActCtx()
{
    static HANDLE context = [] {
        ACTCTXW actctx = {};
        actctx.cbSize = sizeof actctx;
        actctx.dwFlags = ACTCTX_FLAG_HMODULE_VALID | ACTCTX_FLAG_RESOURCE_NAME_VALID;
        actctx.hModule = ModuleInstance;
        actctx.lpResourceName = MAKEINTRESOURCEW(2);
        return CreateActCtxW(&actctx);
    }();
    return context;
}

}  // namespace

PluginControlsScope::PluginControlsScope()
{
    const HANDLE context = PluginActCtx();
    if (context != INVALID_HANDLE_VALUE) active_ = ActivateActCtx(context, &cookie_) != FALSE;
}

PluginControlsScope::~PluginControlsScope()
{
    if (active_) DeactivateActCtx(0, cookie_);
}
