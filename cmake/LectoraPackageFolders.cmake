# Run by CPack on the finished package. dpkg removes each folder that a package lists once it is empty; /opt belongs to
# the machine, and no package of Debian's lists it, so that it would go with this one: the files are packed again
# without it.

foreach(package IN LISTS CPACK_PACKAGE_FILES)
    execute_process(
        COMMAND find ./opt ./usr ! -path ./opt -print0
        COMMAND sort -z
        COMMAND tar --create --no-recursion --null --files-from=- --owner=0 --group=0 --numeric-owner --format=gnu
        COMMAND gzip -9n
        WORKING_DIRECTORY "${CPACK_TEMPORARY_DIRECTORY}" OUTPUT_FILE "${CPACK_TEMPORARY_DIRECTORY}/../data.tar.gz"
        COMMAND_ERROR_IS_FATAL ANY)
    execute_process(COMMAND ar r "${package}" "${CPACK_TEMPORARY_DIRECTORY}/../data.tar.gz" COMMAND_ERROR_IS_FATAL ANY)
endforeach()
