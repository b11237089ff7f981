#include "LibComms/thread/zbmutex.h"

// ZBMutex is header-only; this unit keeps one implementation file per class.
namespace Tervalon {
}
