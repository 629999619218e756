// What the driver needs of a fuzz target.
#pragma once

#include "tests/conformance/random.h"

// Makes an input of random numbers and runs the code under test on it. Ends the process if that
// code does something wrong.
void run_input(conformance::random_source& random);
