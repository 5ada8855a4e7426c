# cmake -DOUT=<folder> -DSOFFICE=<office program> -P VdmMakeSamples.cmake
#
# Writes the sample documents A.docx (3 pages), B.doc (2 pages) and C.zyl (4 pages) into OUT with
# the office, from flat OpenDocument texts with a page break before every page but the first.
# Without a working office it warns and leaves them out; the build goes on.

file(MAKE_DIRECTORY "${OUT}/source")
# A profile of the build's own, so that an office the user has open is neither used nor disturbed.
set(profile "${OUT}/office-profile")

function(make_sample name suffix filter pages)
  set(body "")
  foreach(page RANGE 1 ${pages})
    if(page EQUAL 1)
      set(style "P1")
    else()
      set(style "PB")
    endif()
    string(APPEND body "<text:h text:style-name=\"${style}\" text:outline-level=\"1\">Document ${name}, page ${page} of ${pages}</text:h>")
    foreach(line RANGE 1 6)
      string(APPEND body "<text:p>Sample text ${line} on page ${page} of document ${name}, made when the project was built so that the host has something to merge.</text:p>")
    endforeach()
  endforeach()
  file(WRITE "${OUT}/source/${name}.fodt" "<?xml version=\"1.0\" encoding=\"UTF-8\"?>
<office:document xmlns:office=\"urn:oasis:names:tc:opendocument:xmlns:office:1.0\" xmlns:style=\"urn:oasis:names:tc:opendocument:xmlns:style:1.0\" xmlns:text=\"urn:oasis:names:tc:opendocument:xmlns:text:1.0\" xmlns:fo=\"urn:oasis:names:tc:opendocument:xmlns:xsl-fo-compatible:1.0\" office:version=\"1.2\" office:mimetype=\"application/vnd.oasis.opendocument.text\">
<office:automatic-styles>
<style:style style:name=\"P1\" style:family=\"paragraph\"><style:text-properties fo:font-size=\"18pt\" fo:font-weight=\"bold\"/></style:style>
<style:style style:name=\"PB\" style:family=\"paragraph\"><style:paragraph-properties fo:break-before=\"page\"/><style:text-properties fo:font-size=\"18pt\" fo:font-weight=\"bold\"/></style:style>
</office:automatic-styles>
<office:body><office:text>${body}</office:text></office:body>
</office:document>
")
  # The office names its output after the source and the filter's extension.
  string(REGEX REPLACE ":.*" "" converted_suffix "${filter}")
  execute_process(
    COMMAND "${SOFFICE}" --headless --invisible --nologo --norestore --nolockcheck
            "-env:UserInstallation=file://${profile}"
            --convert-to "${filter}" --outdir "${OUT}/source" "${OUT}/source/${name}.fodt"
    RESULT_VARIABLE result OUTPUT_QUIET ERROR_QUIET TIMEOUT 180)
  set(converted "${OUT}/source/${name}.${converted_suffix}")
  if(NOT result EQUAL 0 OR NOT EXISTS "${converted}")
    message(WARNING "The office could not make the sample ${name}.${suffix} (${result}); it is left out.")
    return()
  endif()
  file(RENAME "${converted}" "${OUT}/${name}.${suffix}")
endfunction()

if(NOT SOFFICE OR NOT EXISTS "${SOFFICE}")
  message(WARNING "No office program: the sample documents are not made.")
  return()
endif()
make_sample(A docx "docx:MS Word 2007 XML" 3)
make_sample(B doc "doc:MS Word 97" 2)
make_sample(C zyl "odt:writer8" 4)
