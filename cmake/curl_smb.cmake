# Says at configure time whether transfers without a mount can work.  libcurl can
# be built without smb://, and newer releases leave it out unless asked; the
# library builds and runs all the same, and such a transfer then gives result 1
# with curl's own code in its text.

# VERSION: of libcurl.  PROTOCOLS: what it lists, separated by blanks.
function(kvt_report_smb version protocols)
  string(REGEX MATCHALL "[^ \"]+" list "${protocols}")
  if(SMB IN_LIST list)
    message(STATUS "libcurl ${version} has smb://")
  elseif(list)
    message(WARNING
      "libcurl ${version} has no smb://: KVTShareFile::SendFileOnWindowSMB1 "
      "will fail at run time.  README.md tells what to do about it.")
  else()
    message(WARNING
      "libcurl ${version} does not list its protocols; whether it has smb:// "
      "shows at run time only (curl_version_info).")
  endif()
endfunction()
