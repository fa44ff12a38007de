# SPDX-License-Identifier: GPL-3.0-or-later
# The credential store, one executable run twice through run-with-secret-service.sh: once
# against a real secret service (gnome-keyring in a private D-Bus session; skipped when
# either is not installed) and once with no session bus at all, where every test checks
# the failure path instead. It stops the secret service itself in its last test (QtDBus).
find_package(Qt6 REQUIRED COMPONENTS DBus)

add_executable(KeychainServiceTest KeychainServiceTest.cpp)
# The error sentences are checked as a user reads them, through the program's own English
# text table that TessaloomAPITestSupport carries.
target_link_libraries(KeychainServiceTest PRIVATE
    TessaloomAPITestSupport TessaloomCompileOptions qt6keychain Qt6::DBus)

foreach(setting present absent)
    if(setting STREQUAL "present")
        set(keychain_test_name KeychainServiceTest)
    else()
        set(keychain_test_name KeychainServiceWithoutSecretServiceTest)
    endif()
    add_test(NAME ${keychain_test_name}
        COMMAND ${CMAKE_CURRENT_SOURCE_DIR}/run-with-secret-service.sh ${setting}
                $<TARGET_FILE:KeychainServiceTest>)
    set_tests_properties(${keychain_test_name} PROPERTIES
        LABELS integration
        TIMEOUT 120
        SKIP_RETURN_CODE 77
        ENVIRONMENT "QT_QPA_PLATFORM=offscreen;TESSALOOM_ENDPOINTS=")
endforeach()

# The provider registry's credential functions over the real store, run the same two ways:
# legacy entries read and left in place, and store failures answered as absent.
add_executable(PricingProviderRegistryKeychainTest PricingProviderRegistryKeychainTest.cpp)
target_link_libraries(PricingProviderRegistryKeychainTest PRIVATE
    TessaloomAPITestSupport TessaloomCompileOptions qt6keychain)
foreach(setting present absent)
    if(setting STREQUAL "present")
        set(registry_test_name PricingProviderRegistryKeychainTest)
    else()
        set(registry_test_name PricingProviderRegistryWithoutSecretServiceTest)
    endif()
    add_test(NAME ${registry_test_name}
        COMMAND ${CMAKE_CURRENT_SOURCE_DIR}/run-with-secret-service.sh ${setting}
                $<TARGET_FILE:PricingProviderRegistryKeychainTest>)
    set_tests_properties(${registry_test_name} PROPERTIES
        LABELS integration
        TIMEOUT 120
        SKIP_RETURN_CODE 77
        ENVIRONMENT "QT_QPA_PLATFORM=offscreen;TESSALOOM_ENDPOINTS=")
endforeach()
