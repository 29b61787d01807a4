# AddressSanitizer and UndefinedBehaviorSanitizer for the "sanitize" preset.
option(KALVERO_SANITIZE "Build with AddressSanitizer and UndefinedBehaviorSanitizer" OFF)
if(KALVERO_SANITIZE)
  add_compile_options(-fsanitize=address,undefined -fno-sanitize-recover=all -fno-omit-frame-pointer)
  add_link_options(-fsanitize=address,undefined)
endif()
