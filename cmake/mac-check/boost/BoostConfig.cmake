# Boost for the Darwin check: headers only, its compiled parts stay open when linking.
foreach(_part IN LISTS Boost_FIND_COMPONENTS ITEMS headers)
    if(NOT TARGET Boost::${_part})
        add_library(Boost::${_part} INTERFACE IMPORTED)
    endif()
    set(Boost_${_part}_FOUND TRUE)
endforeach()
set(Boost_FOUND TRUE)
