# Warnings are errors on our own code. Be's four-character constants ('LONG') are
# multi-character literals by design, so that warning is off.
add_library(glimrow_warnings INTERFACE)
target_compile_options(glimrow_warnings INTERFACE
    -Wall -Wextra -Werror -Wno-multichar -Wno-unused-parameter)
