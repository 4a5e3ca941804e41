if(TIVORA_SANITIZE)
  add_compile_options(-fsanitize=${TIVORA_SANITIZE} -fno-omit-frame-pointer -fno-sanitize-recover=all)
  add_link_options(-fsanitize=${TIVORA_SANITIZE})
endif()
