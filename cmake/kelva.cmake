# Warnings and strict Qt defines: every target of ours links one of these two, privately.
add_library(kelva_options INTERFACE)
target_compile_options(kelva_options INTERFACE -Wall -Wextra -Wpedantic -Wshadow -Werror)
target_compile_definitions(kelva_options INTERFACE QT_DEPRECATED_WARNINGS QT_NO_FOREACH QT_NO_CAST_FROM_BYTEARRAY)
if(KELVA_SANITIZE)
    target_compile_options(kelva_options INTERFACE -fsanitize=address,undefined -fno-sanitize-recover=undefined
                                                   -fno-omit-frame-pointer)
    target_link_options(kelva_options INTERFACE -fsanitize=address,undefined)
endif()

add_library(kelva_backend_options INTERFACE)
target_link_libraries(kelva_backend_options INTERFACE kelva_options)
target_compile_definitions(kelva_backend_options INTERFACE QT_NO_CAST_FROM_ASCII QT_NO_CAST_TO_ASCII
                                                           QT_NO_URL_CAST_FROM_STRING)

# kelva_library(name [BACKEND] SOURCES file... [LIBS lib...]): the static library of one folder.
# Headers are included from the root of their half: "service/session.h", "documents/kelvainfoview.h".
function(kelva_library name)
    cmake_parse_arguments(PARSE_ARGV 1 L "BACKEND" "" "SOURCES;LIBS")
    add_library(${name} STATIC ${L_SOURCES})
    if(L_BACKEND)
        target_include_directories(${name} PUBLIC ${CMAKE_SOURCE_DIR}/backend)
        target_link_libraries(${name} PRIVATE kelva_backend_options)
    else()
        target_include_directories(${name} PUBLIC ${CMAKE_SOURCE_DIR}/client)
        target_link_libraries(${name} PRIVATE kelva_options)
    endif()
    target_link_libraries(${name} PUBLIC ${L_LIBS})
endfunction()

# Windows leave what has no parent to the end of the process, and every plug-in file has a meta object of its own for
# the interface that it implements: neither is a fault.
set(KELVA_ASAN_OPTIONS "detect_leaks=0:detect_odr_violation=0")

# kelva_test(area CLASSES TestA TestB... LIBS lib... [SOURCES file...]): one program per folder, one CTest
# entry per class. Class TestFoo stands in testfoo.cpp and ends with KELVA_TEST(TestFoo).
function(kelva_test area)
    cmake_parse_arguments(PARSE_ARGV 1 T "" "TIMEOUT" "CLASSES;LIBS;SOURCES")
    set(sources ${T_SOURCES})
    foreach(class IN LISTS T_CLASSES)
        string(TOLOWER ${class} file)
        list(APPEND sources ${file}.cpp)
    endforeach()
    add_executable(test_${area} ${sources})
    # A directory of its own: what lies "beside the program" differs from test to test.
    set_target_properties(test_${area} PROPERTIES RUNTIME_OUTPUT_DIRECTORY ${CMAKE_BINARY_DIR}/tests/bin/${area})
    target_link_libraries(test_${area} PRIVATE kelva_options ${T_LIBS} kelva_testsupport Qt5::Test)
    if(NOT T_TIMEOUT)
        set(T_TIMEOUT 120)
    endif()
    foreach(class IN LISTS T_CLASSES)
        add_test(NAME ${area}.${class} COMMAND test_${area} ${class})
        set_tests_properties(${area}.${class} PROPERTIES TIMEOUT ${T_TIMEOUT} ENVIRONMENT
            "QT_QPA_PLATFORM=offscreen;LC_ALL=C.UTF-8;MALLOC_PERTURB_=165;ASAN_OPTIONS=${KELVA_ASAN_OPTIONS};UBSAN_OPTIONS=print_stacktrace=1")
    endforeach()
endfunction()
