# cmake --install: the agent, its libraries and the desktop programs in one folder. MAPI32.dll goes to a folder of its own,
# because beside the agent it would take the place of the mail program's.
function(zeb_install DESTINATION)
  foreach(target ${ARGN})
    if(TARGET ${target})
      install(TARGETS ${target} RUNTIME DESTINATION ${DESTINATION})
    endif()
  endforeach()
endfunction()

zeb_install(. ZebAgentForOutlook64 fennic64 dunmere64bit zebdesk zebdesk32)
zeb_install(localstore mapi32)
