// What the crypto interface was asked for.
#pragma once

namespace vndiscover {

extern int g_mebibyteHashes;  // hashes of 1 MiB, as a password's key costs one

}  // namespace vndiscover
