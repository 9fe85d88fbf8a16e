# Writes KTX 2 files, has them read and rewritten by ktx-parse, and compares.
#   cmake -DSAMPLES=... -DNODE=... -DKTX_PARSE=... -DZSTD=... -DWORK=... -P ktx_parse.cmake
file(REMOVE_RECURSE ${WORK})
file(MAKE_DIRECTORY ${WORK})
execute_process(COMMAND ${SAMPLES} write ${WORK} COMMAND_ERROR_IS_FATAL ANY)
execute_process(COMMAND ${NODE} ${CMAKE_CURRENT_LIST_DIR}/ktx_parse.mjs ${WORK} ${KTX_PARSE} ${ZSTD} COMMAND_ERROR_IS_FATAL ANY)
execute_process(COMMAND ${SAMPLES} compare ${WORK} COMMAND_ERROR_IS_FATAL ANY)
