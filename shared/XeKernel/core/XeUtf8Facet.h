#pragma once

// Boost's facet is made to be compiled into its user's own name space. Its header has one guard
// for all users, so this is included by source files only.
#define BOOST_UTF8_BEGIN_NAMESPACE namespace XeKernel {
#define BOOST_UTF8_END_NAMESPACE }
#define BOOST_UTF8_DECL

#include <boost/detail/utf8_codecvt_facet.hpp>
