// The reference functions that the instruction table's bridges name, gathered in one place.
#pragma once

#include "sve/semantics/compares.h"
#include "sve/semantics/counts.h"
#include "sve/semantics/floating_point.h"
#include "sve/semantics/integer.h"
#include "sve/semantics/memory.h"
#include "sve/semantics/permutes.h"
#include "sve/semantics/predicates.h"
