// The operating system and processor this build is for, as the version line and the update
// address name them.
#pragma once

#if defined(__linux__)
inline constexpr const char* buildsystem = "Linux";
#elif defined(__FreeBSD__)
inline constexpr const char* buildsystem = "FreeBSD";
#elif defined(__APPLE__)
inline constexpr const char* buildsystem = "Darwin";
#else
inline constexpr const char* buildsystem = "Unix";
#endif

#if defined(__x86_64__)
inline constexpr const char* buildmachine = "x86_64";
#elif defined(__aarch64__)
inline constexpr const char* buildmachine = "aarch64";
#elif defined(__i386__)
inline constexpr const char* buildmachine = "i386";
#else
inline constexpr const char* buildmachine = "unknown";
#endif
