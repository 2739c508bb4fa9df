#include "ExceptionsPlain.h"

#include <stdexcept>

std::string thrownByInPlainCpp(PlainFunction function) { return thrownBy(function); }

void throwIntInPlainCpp() { throw 7; }

void throwErrorInPlainCpp() { throw std::runtime_error("plain"); }
