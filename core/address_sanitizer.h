#pragma once

// CALDER_WATCHES_ADDRESSES is defined in builds with the address sanitizer, whose leak checker must
// see each object by itself.
#if defined(__SANITIZE_ADDRESS__)
#define CALDER_WATCHES_ADDRESSES 1
#elif defined(__has_feature)
#if __has_feature(address_sanitizer)
#define CALDER_WATCHES_ADDRESSES 1
#endif
#endif
