// The clients that --vl chooses from. They lie beside the default client. Each emulates a processor
// of one vector length, which is in its file's name. The default client has such a name, too.
#pragma once

#include <string>

#include "host/launcher/client_library.h"

namespace host {

// The path of the client for a vector length: what the user gave as the number of bits. Throws
// launch_error: status usage if no processor has that length, launcher_failed if there is no client
// for it.
std::string client_for_length(const std::string& bits);

// Throws launch_error if the client does not have the length that its file's name tells.
void check_length(const client_library& client, const std::string& bits);

}  // namespace host
