# Installs the tree into a prefix of its own, and builds the example there. -D TREE= SOURCE= OUT= GENERATOR=
# COMPILER= LAUNCHER= SANITIZE=
function(run)
  execute_process(COMMAND ${ARGN} RESULT_VARIABLE status OUTPUT_VARIABLE output ERROR_VARIABLE output)
  if(status)
    list(JOIN ARGN " " command)
    message(FATAL_ERROR "${command}\n${output}")
  endif()
endfunction()

set(flags)
if(SANITIZE)
  set(flags "-DCMAKE_CXX_FLAGS=-fsanitize=${SANITIZE}")
endif()
# What is no longer installed must not be found.
file(REMOVE_RECURSE "${OUT}/prefix")
run(${CMAKE_COMMAND} --install "${TREE}" --prefix "${OUT}/prefix")
run(${CMAKE_COMMAND} --fresh -S "${SOURCE}" -B "${OUT}/build" -G "${GENERATOR}"
  "-DCMAKE_CXX_COMPILER=${COMPILER}" "-DCMAKE_CXX_COMPILER_LAUNCHER=${LAUNCHER}" "-DCMAKE_PREFIX_PATH=${OUT}/prefix" ${flags})
run(${CMAKE_COMMAND} --build "${OUT}/build")
