// The fast paths that the instruction table names, gathered in one place.
#pragma once

#include "sve/fast/compare.h"
#include "sve/fast/contiguous_memory.h"
#include "sve/fast/counting.h"
#include "sve/fast/first_fault.h"
#include "sve/fast/floating_point.h"
#include "sve/fast/gather_scatter.h"
#include "sve/fast/immediates_shifts_moves.h"
#include "sve/fast/integer_arithmetic.h"
#include "sve/fast/permutes_reductions.h"
#include "sve/fast/predicates.h"
