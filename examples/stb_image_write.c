// The library is a header. Its functions are compiled here.
#define STB_IMAGE_WRITE_IMPLEMENTATION
#include <stb_image_write.h>
