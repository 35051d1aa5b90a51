#pragma once

// MARVENTO_ASAN is defined when the tests are built with AddressSanitizer, which holds freed
// memory back and slows libraries it instruments many times over.
#if defined(__SANITIZE_ADDRESS__)
#define MARVENTO_ASAN 1
#elif defined(__has_feature)
#if __has_feature(address_sanitizer)
#define MARVENTO_ASAN 1
#endif
#endif
