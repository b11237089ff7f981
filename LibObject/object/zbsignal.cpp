#include "LibObject/object/zbsignal.h"

// ZBSignal is header-only; this unit keeps one implementation file per class.
namespace Tervalon {
}
