#include "LibObject/container/zbcalcpair.h"

// ZBCalcPair is a template, instantiated for the planner's value types where
// they are defined; this unit keeps one implementation file per class.
namespace Tervalon {
template class ZBCalcPair<double>;
template class ZBCalcPair<int>;
template class ZBCalcPair<char>;
}
