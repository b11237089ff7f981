#include "LibCore/maths/zbrecentset.h"

// The instances the modules use.
namespace Tervalon {
template class ZBRecentSet<int>;
template class ZBRecentSet<double>;
}
