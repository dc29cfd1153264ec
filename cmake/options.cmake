# What every target of the project is compiled with.
add_library(moxvc_options INTERFACE)
target_compile_options(moxvc_options INTERFACE
  -Wall -Wextra -Wpedantic -Wshadow -Wconversion -Wno-sign-conversion -Wundef -Wvla -Werror -fno-plt
  -ffile-prefix-map=${CMAKE_SOURCE_DIR}/=)
if(MOXVC_SANITIZE)
  target_compile_options(moxvc_options INTERFACE
    -fsanitize=${MOXVC_SANITIZE} -fno-sanitize-recover=all -fno-omit-frame-pointer -g)
  target_link_options(moxvc_options INTERFACE -fsanitize=${MOXVC_SANITIZE})
endif()
