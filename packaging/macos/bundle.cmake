# Creates the bundle Nocta.app from the program, its Info.plist, its icon, and Sparkle.

set(bundle_folder ${PROJECT_SOURCE_DIR}/packaging/macos)
set(drawing ${PROJECT_SOURCE_DIR}/packaging/nocta.svg)
set(icon ${CMAKE_CURRENT_BINARY_DIR}/Nocta.icns)
set(iconset ${CMAKE_CURRENT_BINARY_DIR}/Nocta.iconset)

add_executable(nocta-iconset ${bundle_folder}/iconset.cpp)
target_link_libraries(nocta-iconset PRIVATE nocta_options Qt6::Gui Qt6::Svg)
add_custom_command(OUTPUT ${icon} DEPENDS nocta-iconset ${drawing}
    COMMAND nocta-iconset ${drawing} ${iconset}
    COMMAND iconutil --convert icns --output ${icon} ${iconset})
set_source_files_properties(${icon} PROPERTIES MACOSX_PACKAGE_LOCATION Resources)
target_sources(nocta PRIVATE ${icon})

string(REPLACE "&" "&amp;" feed_url "${NOCTA_FEED_URL}")
configure_file(${bundle_folder}/Info.plist.in Info.plist @ONLY)
set_target_properties(nocta PROPERTIES
    MACOSX_BUNDLE TRUE
    MACOSX_BUNDLE_INFO_PLIST ${CMAKE_CURRENT_BINARY_DIR}/Info.plist
    OUTPUT_NAME Nocta
    BUILD_RPATH @executable_path/../Frameworks
    INSTALL_RPATH @executable_path/../Frameworks)

if(NOCTA_SPARKLE)
    add_custom_command(TARGET nocta POST_BUILD
        COMMAND ditto ${NOCTA_SPARKLE} $<TARGET_BUNDLE_CONTENT_DIR:nocta>/Frameworks/Sparkle.framework)
endif()
install(TARGETS nocta BUNDLE DESTINATION .)
