// The engine's one error path: a fixed message per code, caption
// "tessel openGL engine", exit status 1.
#pragma once

constexpr int ERR_OPEN = 0x101;
constexpr int ERR_READ = 0x102;
constexpr int ERR_WRITE = 0x103;
constexpr int ERR_SEEK = 0x104;
constexpr int ERR_NOT_3DS = 0x201;
constexpr int ERR_NO_MATERIAL = 0x301;
constexpr int ERR_NOT_PCX = 0x401;
constexpr int ERR_BITPLANES = 0x402;

// The message of `code`, with its trailing newline ("Unkown error type.\n" for
// a code outside the table).
const char* engineErrorMessage(int code);

// Reports `code` through fatalReport and ends the process with status 1.
[[noreturn]] void engineFatal(int code);
