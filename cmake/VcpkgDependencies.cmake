# Third-party code for builds on Windows, from vcpkg (vcpkg.json lists the packages).
find_package(cJSON CONFIG REQUIRED)
find_package(OpenSSL REQUIRED)
find_package(pugixml CONFIG REQUIRED)
find_package(CLI11 CONFIG REQUIRED)

function(_vndiscover_from_vcpkg name target)
    add_library(vndiscover::${name} INTERFACE IMPORTED GLOBAL)
    target_link_libraries(vndiscover::${name} INTERFACE ${target})
endfunction()
_vndiscover_from_vcpkg(cjson cjson)
_vndiscover_from_vcpkg(crypto OpenSSL::Crypto)
_vndiscover_from_vcpkg(pugixml pugixml::pugixml)
_vndiscover_from_vcpkg(cli11 CLI11::CLI11)
