#include "sve/state/vector_length.h"

extern "C" {
extern const char SVE_LIBRARY_OF_THIS_LENGTH;
const char SVE_LIBRARY_OF_THIS_LENGTH = 0;
}
