# Reads DDS files of ImageMagick with moktex and the reverse. Both decode to the same pixels, except that this library weights the
# palette by 42/64 and 22/64 instead of thirds.
#   cmake -DMOKTEX=... -DCONVERT=... -DPICTURE=... -DWORK=... -P other_dds_tools.cmake
file(REMOVE_RECURSE ${WORK})
file(MAKE_DIRECTORY ${WORK})
function(run)
    execute_process(COMMAND ${ARGN} OUTPUT_VARIABLE output ERROR_VARIABLE output RESULT_VARIABLE status)
    if(NOT status EQUAL 0)
        message(FATAL_ERROR "${ARGN}\nfailed with ${status}:\n${output}")
    endif()
endfunction()

# Decodes a DDS file with both tools and compares.
function(expect_alike dds psnr)
    run(${MOKTEX} convert ${dds} -o ${WORK}/ours.png --overwrite --quiet)
    run(${CONVERT} ${dds} PNG32:${WORK}/theirs.png)
    run(${MOKTEX} compare ${WORK}/ours.png ${WORK}/theirs.png --min-psnr ${psnr})
endfunction()

foreach(format dxt1 dxt5)
    run(${CONVERT} ${PICTURE} -define dds:compression=${format} -define dds:mipmaps=0 ${WORK}/theirs_${format}.dds)
    expect_alike(${WORK}/theirs_${format}.dds 42)
    run(${MOKTEX} convert ${PICTURE} -o ${WORK}/ours_${format}.dds --format ${format} --quiet)
    expect_alike(${WORK}/ours_${format}.dds 42)
endforeach()
run(${MOKTEX} convert ${PICTURE} -o ${WORK}/plain.dds --format argb8888:uintnorm --quiet)
run(${CONVERT} ${WORK}/plain.dds PNG32:${WORK}/plain.png)
run(${MOKTEX} compare ${PICTURE} ${WORK}/plain.png --min-psnr 99)
