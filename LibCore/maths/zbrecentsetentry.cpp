#include "LibCore/maths/zbrecentsetentry.h"

// ZBRecentSetEntry is a template; this unit keeps one implementation file per class.
namespace Tervalon {
template class ZBRecentSetEntry<int>;
template class ZBRecentSetEntry<double>;
}
