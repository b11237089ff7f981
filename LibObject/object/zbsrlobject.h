#pragma once

// Binders of nested objects. Included at the end of zbobject.h, since they
// need the whole of ZBObject.

#include "LibObject/object/zbsrl.h"
#include "LibObject/object/zbsrlvaluevector.h"
#include "LibObject/object/zbsrlvaluearray.h"
#include "LibObject/object/zbsrlobjectarray.h"
