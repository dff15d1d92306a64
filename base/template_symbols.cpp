#include "tabwerk.h"

// The members are defined here and not in the class, so that they are symbols
// of the library.
CTabwerk::CTabwerk() = default;
CTabwerk::CTabwerk(CTabwerk const& other) = default;
CTabwerk& CTabwerk::operator=(CTabwerk const& other) = default;

int fnTabwerk() { return 42; }

int nTabwerk = 0;
