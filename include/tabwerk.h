// Everything that the library offers, in one header.
#ifndef TABWERK_TABWERK_H
#define TABWERK_TABWERK_H

#include "DBDefinition.h"
#include "DBDirectory.h"
#include "DBInterpreter.h"
#include "DBTabelle.h"
#include "DBZeile.h"
#include "DBbase.h"
#include "tabwerk_export.h"
#include "ztypes.h"

// Three symbols without a task of their own.  Kept: existing hosts use them to
// see that the library is there and can be linked.

// An object without state: constructing and assigning it change nothing.
class TABWERK_API CTabwerk {
 public:
  CTabwerk();
  CTabwerk(CTabwerk const& other);
  CTabwerk& operator=(CTabwerk const& other);
};

// 42.
TABWERK_API int fnTabwerk();

// 0.
extern TABWERK_API int nTabwerk;

#endif  // TABWERK_TABWERK_H
