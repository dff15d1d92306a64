// The export macro of the library.
//
// TABWERK_API marks what the shared library exports.  A program that links the
// shared library defines nothing; the library's own build defines
// TABWERK_BUILDING, and a program that links the objects directly (the tests)
// defines TABWERK_STATIC.
#ifndef TABWERK_EXPORT_H
#define TABWERK_EXPORT_H

#if defined(TABWERK_STATIC)
#define TABWERK_API
#elif defined(_WIN32)
#if defined(TABWERK_BUILDING)
#define TABWERK_API __declspec(dllexport)
#else
#define TABWERK_API __declspec(dllimport)
#endif
#else
#define TABWERK_API __attribute__((visibility("default")))
#endif

#endif  // TABWERK_EXPORT_H
