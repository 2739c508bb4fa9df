#include "core/XeUtf8Facet.h"

#include "XeSafeCRT.h"

#include <boost/detail/utf8_codecvt_facet.ipp>
