#include "common/guarded.h"
