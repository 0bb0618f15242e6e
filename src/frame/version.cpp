#include "zev_impl.h"

namespace {
const ZevLibraryVersion s_libVer = {
    7, 1, 1, 37466, {'v', '8', 0, 0}, "zevCV SSSE3 (v8)", "7.1.1 (r37466)", "Sep 24 2012",
};
}  // namespace

extern "C" const ZevLibraryVersion* ZEVFN(zevcvGetLibVersion)(void) { return &s_libVer; }
