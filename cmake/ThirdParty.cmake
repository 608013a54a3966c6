# What the product links, for the kit: licence texts, THIRD-PARTY-NOTICES.txt and a CycloneDX bill of materials.
# Texts and versions are taken from the packages that were linked, never from this tree.

# One row each: name; version; licence (SPDX); package URL; the program that contains it; file with the text.
function(_third_party_row name version licence purl holder text)
    string(REPLACE "+" "%2B" purl "${purl}")
    set(row "${name}|${version}|${licence}|${purl}|${holder}|${text}")
    set_property(GLOBAL APPEND PROPERTY VNDISCOVER_THIRD_PARTY "${row}")
endfunction()

# _package_version(RESULT PACKAGE): the version of an installed Debian package, or "".
function(_package_version result package)
    execute_process(COMMAND dpkg-query -W -f "\${Version}" ${package}
                    OUTPUT_VARIABLE version ERROR_QUIET RESULT_VARIABLE failed)
    if(failed)
        set(version "")
    endif()
    set(${result} "${version}" PARENT_SCOPE)
endfunction()

function(_third_party_libraries)
    file(STRINGS ${VNDISCOVER_DEPS}/versions.txt lines)
    foreach(line IN LISTS lines)
        string(REGEX MATCH "^([^ ]+) (.+)$" _ "${line}")
        set(version_${CMAKE_MATCH_1} ${CMAKE_MATCH_2})
    endforeach()
    set(texts ${VNDISCOVER_DEPS}/licenses)
    # OpenSSL and pugixml are built from the upstream sources, without the distribution's changes.
    string(REGEX REPLACE "-[^-]*$" "" openssl "${version_OpenSSL}")
    _third_party_row(cJSON "${version_cJSON}" MIT "pkg:deb/debian/cjson@${version_cJSON}?arch=source"
                     "VnDiscover.dll, vndiscover.exe, VnBrowser.exe" ${texts}/cJSON.txt)
    _third_party_row(OpenSSL "${openssl}" Apache-2.0 "pkg:generic/openssl@${openssl}"
                     "VnDiscover.dll (AES of libcrypto)" ${texts}/OpenSSL.txt)
    _third_party_row(pugixml "${version_pugixml}" MIT
                     "pkg:generic/pugixml@${version_pugixml}" "vndiscover.exe, VnBrowser.exe"
                     ${texts}/pugixml.txt)
    _third_party_row(CLI11 "${version_CLI11}" BSD-3-Clause
                     "pkg:deb/debian/cli11@${version_CLI11}?arch=source" vndiscover.exe
                     ${texts}/CLI11.txt)
endfunction()

# The compiler's libraries are linked statically into every program.
function(_third_party_runtime)
    set(gcc gcc-mingw-w64-x86-64-posix-runtime)
    set(crt mingw-w64-x86-64-dev)
    set(programs "VnDiscover.dll, vndiscover.exe, VnBrowser.exe, windows_check.exe")
    _package_version(gccVersion ${gcc})
    _package_version(crtVersion ${crt})
    _third_party_row("GCC runtime libraries" "${gccVersion}"
                     "GPL-3.0-or-later WITH GCC-exception-3.1"
                     "pkg:deb/debian/${gcc}@${gccVersion}" "${programs}"
                     /usr/share/doc/${gcc}/copyright)
    _third_party_row("mingw-w64" "${crtVersion}" "ZPL-2.1 AND MIT AND BSD-3-Clause"
                     "pkg:deb/debian/mingw-w64@${crtVersion}?arch=source"
                     "${programs}" /usr/share/doc/${crt}/copyright)
endfunction()

# The commit's time in seconds, or SOURCE_DATE_EPOCH if it is set.
function(_commit_time result)
    set(epoch "$ENV{SOURCE_DATE_EPOCH}")
    if(epoch STREQUAL "")
        execute_process(COMMAND git -C ${PROJECT_SOURCE_DIR} log -1 --format=%ct OUTPUT_VARIABLE epoch
                        OUTPUT_STRIP_TRAILING_WHITESPACE ERROR_QUIET)
    endif()
    if(NOT epoch MATCHES "^[0-9]+$")
        set(epoch 0)
    endif()
    set(ENV{SOURCE_DATE_EPOCH} ${epoch})
    string(TIMESTAMP time "%Y-%m-%dT%H:%M:%SZ" UTC)
    set(${result} ${time} PARENT_SCOPE)
endfunction()

# vndiscover_third_party(STAGE): writes licenses/, THIRD-PARTY-NOTICES.txt and sbom.cdx.json into the folder.
# Writes nothing if a version or a text is missing (for libraries that did not come from scripts/build-deps.sh),
# since an incomplete list would look complete.
function(vndiscover_third_party stage)
    file(REMOVE_RECURSE ${stage}/licenses)
    file(REMOVE ${stage}/THIRD-PARTY-NOTICES.txt ${stage}/sbom.cdx.json)
    if(NOT VNDISCOVER_DEPS OR NOT EXISTS ${VNDISCOVER_DEPS}/versions.txt)
        message(STATUS "No notices for the kit: the libraries did not come from scripts/build-deps.sh")
        return()
    endif()
    set_property(GLOBAL PROPERTY VNDISCOVER_THIRD_PARTY "")
    _third_party_libraries()
    _third_party_runtime()
    get_property(rows GLOBAL PROPERTY VNDISCOVER_THIRD_PARTY)

    set(sections)
    set(components)
    set(references)
    foreach(row IN LISTS rows)
        string(REPLACE "|" ";" row "${row}")
        list(GET row 0 name)
        list(GET row 1 version)
        list(GET row 2 licence)
        list(GET row 3 purl)
        list(GET row 4 holder)
        list(GET row 5 text)
        if(version STREQUAL "" OR NOT EXISTS "${text}")
            message(WARNING "No notices for the kit: version or licence text of ${name} is missing (${text})")
            file(REMOVE_RECURSE ${stage}/licenses)
            return()
        endif()
        string(REPLACE " " "-" file "licenses/${name}.txt")
        configure_file(${text} ${stage}/${file} COPYONLY)
        string(APPEND sections "\n${name} ${version}\n"
               "    in:      ${holder}\n    licence: ${licence}\n    text:    ${file}\n")
        list(APPEND components "    {
      \"type\": \"library\",
      \"bom-ref\": \"${purl}\",
      \"name\": \"${name}\",
      \"version\": \"${version}\",
      \"licenses\": [ { \"expression\": \"${licence}\" } ],
      \"purl\": \"${purl}\",
      \"properties\": [ { \"name\": \"linked-into\", \"value\": \"${holder}\" } ]
    }")
        list(APPEND references "\"${purl}\"")
    endforeach()
    list(JOIN components ",\n" SBOM_COMPONENTS)
    list(JOIN references ", " SBOM_REFERENCES)
    _commit_time(SBOM_TIME)
    string(UUID SBOM_SERIAL NAMESPACE 6ba7b811-9dad-11d1-80b4-00c04fd430c8
           NAME "VnDiscover ${PROJECT_VERSION} ${SBOM_TIME} ${SBOM_REFERENCES}" TYPE SHA1)
    configure_file(${PROJECT_SOURCE_DIR}/cmake/package/sbom.cdx.json.in ${stage}/sbom.cdx.json @ONLY)
    file(WRITE ${stage}/THIRD-PARTY-NOTICES.txt
         "VnDiscover ${PROJECT_VERSION} contains, statically linked:\n${sections}")
endfunction()
