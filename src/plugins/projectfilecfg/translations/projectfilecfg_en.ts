<?xml version="1.0" encoding="utf-8"?>
<!DOCTYPE TS>
<TS version="2.1" language="en_US">
<context>
    <name>EngineerPropertySettingWidget</name>
    <message>
        <source>project attribute</source>
        <translation>project attribute</translation>
    </message>
    <message>
        <source>Project name</source>
        <translation>Project name</translation>
    </message>
    <message>
        <source>Commect</source>
        <translation>Commect</translation>
    </message>
    <message>
        <source>OK</source>
        <translation>OK</translation>
    </message>
    <message>
        <source>Cancel</source>
        <translation>Cancel</translation>
    </message>
    <message>
        <source>Remind</source>
        <translation>Remind</translation>
    </message>
    <message>
        <source>The current file already exists</source>
        <translation>The current file already exists</translation>
    </message>
</context>
<context>
    <name>ProjectFileCfg::Internal::EngineerDocBackup</name>
    <message>
        <source>Saving the gallery [%1]...</source>
        <translation>Saving the gallery [%1]...</translation>
    </message>
    <message>
        <source>BKG:</source>
        <translation>BKG:</translation>
    </message>
</context>
<context>
    <name>ProjectFileCfg::Internal::EngineerDocLoad</name>
    <message>
        <source>read device infomation [%1] failed,reason:%2</source>
        <translation>read device infomation [%1] failed,reason:%2</translation>
    </message>
    <message>
        <source>Send Config to Device</source>
        <translation>Send Config to Device</translation>
    </message>
    <message>
        <source>LOGO:</source>
        <translation>LOGO:</translation>
    </message>
    <message>
        <source>BKG:</source>
        <translation>BKG:</translation>
    </message>
</context>
<context>
    <name>ProjectFileCfg::Internal::EngineerDocOperWidget</name>
    <message>
        <source>Device</source>
        <translation>Device</translation>
    </message>
    <message>
        <source>Save Project</source>
        <translation>Save Project</translation>
    </message>
    <message>
        <source>Import Project</source>
        <translation>Import Project</translation>
    </message>
    <message>
        <source>Apply Others</source>
        <translation>Apply Others</translation>
    </message>
    <message>
        <source>ALL Save as</source>
        <translation>ALL Save as</translation>
    </message>
    <message>
        <source>All Delete</source>
        <translation>All Delete</translation>
    </message>
    <message>
        <source>Project file</source>
        <translation>Project file</translation>
    </message>
    <message>
        <source>Comment</source>
        <translation>Comment</translation>
    </message>
    <message>
        <source>Operations</source>
        <translation>Operations</translation>
    </message>
    <message>
        <source>Edit</source>
        <translation>Edit</translation>
    </message>
    <message>
        <source>Apply</source>
        <translation>Apply</translation>
    </message>
    <message>
        <source>Save as</source>
        <translation>Save as</translation>
    </message>
    <message>
        <source>Delete</source>
        <translation>Delete</translation>
    </message>
    <message>
        <source>Sync device data , please wait.</source>
        <translation>Sync device data , please wait.</translation>
    </message>
    <message>
        <source>Restore factory,please wait...</source>
        <translation>Restore factory,please wait...</translation>
    </message>
    <message>
        <source>Project</source>
        <translation>Project</translation>
    </message>
    <message>
        <source>Warning</source>
        <translation>Warning</translation>
    </message>
    <message>
        <source>Please select a device.</source>
        <translation>Please select a device.</translation>
    </message>
    <message>
        <source>Failed to get device information</source>
        <translation>Failed to get device information</translation>
    </message>
    <message>
        <source>Insufficient default path space to perform current operation</source>
        <translation>Insufficient default path space to perform current operation</translation>
    </message>
    <message>
        <source>Cancel</source>
        <translation>Cancel</translation>
    </message>
    <message>
        <source>Please wait while the project file is exported</source>
        <translation>Please wait while the project file is exported</translation>
    </message>
    <message>
        <source>Failed to export bkg</source>
        <translation>Failed to export bkg</translation>
    </message>
    <message>
        <source>Failed to export logo</source>
        <translation>Failed to export logo</translation>
    </message>
    <message>
        <source>Offline device resource file is incomplete</source>
        <translation>Offline device resource file is incomplete</translation>
    </message>
    <message>
        <source>User cancels current operation</source>
        <translation>User cancels current operation</translation>
    </message>
    <message>
        <source>Failed to encrypt file</source>
        <translation>Failed to encrypt file</translation>
    </message>
    <message>
        <source>Failed to save json file</source>
        <translation>Failed to save json file</translation>
    </message>
    <message>
        <source>Remind</source>
        <translation>Remind</translation>
    </message>
    <message>
        <source>The file does not exist.</source>
        <translation>The file does not exist.</translation>
    </message>
    <message>
        <source>The file does not exist or the file format is incorrect.</source>
        <translation>The file does not exist or the file format is incorrect.</translation>
    </message>
    <message>
        <source>Whether the current configuration needs to be backed up before the project file is imported?</source>
        <translation>Whether the current configuration needs to be backed up before the project file is imported?</translation>
    </message>
    <message>
        <source> Restore factory failed </source>
        <translation> Restore factory failed </translation>
    </message>
    <message>
        <source>Start save project file</source>
        <translation>Start save project file</translation>
    </message>
    <message>
        <source>Incorrect file content</source>
        <translation>Incorrect file content</translation>
    </message>
    <message>
        <source>Input or output card mismatch</source>
        <translation>Input or output card mismatch</translation>
    </message>
    <message>
        <source>Hardware version mismatch</source>
        <translation>Hardware version mismatch</translation>
    </message>
    <message>
        <source>Failed to decompress file</source>
        <translation>Failed to decompress file</translation>
    </message>
    <message>
        <source>Project file import failed</source>
        <translation>Project file import failed</translation>
    </message>
    <message>
        <source>Incorrect JSON file</source>
        <translation>Incorrect JSON file</translation>
    </message>
    <message>
        <source>Device type mismatch</source>
        <translation>Device type mismatch</translation>
    </message>
    <message>
        <source>Protocol version mismatch</source>
        <translation>Protocol version mismatch</translation>
    </message>
    <message>
        <source>apply gallery failed</source>
        <translation>apply gallery failed</translation>
    </message>
    <message>
        <source>Incorrect gallery file.</source>
        <translation>Incorrect gallery file.</translation>
    </message>
    <message>
        <source>save as project file,please wait...</source>
        <translation>save as project file,please wait...</translation>
    </message>
    <message>
        <source>save as [%1] failed</source>
        <translation>save as [%1] failed</translation>
    </message>
    <message>
        <source>save as success</source>
        <translation>save as success</translation>
    </message>
    <message>
        <source>The file[%1] context is invalid.</source>
        <translation>The file[%1] context is invalid.</translation>
    </message>
    <message>
        <source>Import project file [%1] failed</source>
        <translation>Import project file [%1] failed</translation>
    </message>
    <message>
        <source>Import as success</source>
        <translation>Import as success</translation>
    </message>
    <message>
        <source>file</source>
        <translation>file</translation>
    </message>
    <message>
        <source>Not enough space to import all selected files.</source>
        <translation>Not enough space to import all selected files.</translation>
    </message>
    <message>
        <source>Import project files,please wait...</source>
        <translation>Import project files,please wait...</translation>
    </message>
    <message>
        <source>choose Des Directory</source>
        <translation>choose Des Directory</translation>
    </message>
    <message>
        <source>Project File [%1] already exist. Please change file name and try again</source>
        <translation>Project File [%1] already exist. Please change file name and try again</translation>
    </message>
    <message>
        <source>Cannot save the file because there is not enough storage available.</source>
        <translation>Cannot save the file because there is not enough storage available.</translation>
    </message>
    <message>
        <source>Confirm to delete the selected project file?</source>
        <translation>Confirm to delete the selected project file?</translation>
    </message>
    <message>
        <source>Delete project file failed!</source>
        <translation>Delete project file failed!</translation>
    </message>
    <message>
        <source>Confirm to delete all project file?</source>
        <translation>Confirm to delete all project file?</translation>
    </message>
    <message>
        <source>File rename failed</source>
        <translation>File rename failed</translation>
    </message>
</context>
<context>
    <name>ProjectFileCfg::Internal::ProjectFileCfgMode</name>
    <message>
        <source>Project File</source>
        <translation>Project File</translation>
    </message>
    <message>
        <source>Switch to project file module</source>
        <translation>Switch to project file module</translation>
    </message>
</context>
<context>
    <name>UDiskSelectWidget</name>
    <message>
        <source>Please select the destination U disk</source>
        <translation>project attribute&lt;/source&gt;
        &lt;translation&gt;project attribute&lt;/translation&gt;
    &lt;/message&gt;
    &lt;message&gt;
        &lt;source&gt;Project name&lt;/source&gt;
        &lt;translation&gt;Project name&lt;/translation&gt;
    &lt;/message&gt;
    &lt;message&gt;
        &lt;source&gt;Commect&lt;/source&gt;
        &lt;translation&gt;Commect&lt;/translation&gt;
    &lt;/message&gt;
    &lt;message&gt;
        &lt;source&gt;OK&lt;/source&gt;
        &lt;translation&gt;OK&lt;/translation&gt;
    &lt;/message&gt;
    &lt;message&gt;
        &lt;source&gt;Cancel&lt;/source&gt;
        &lt;translation&gt;Cancel&lt;/translation&gt;
    &lt;/message&gt;
    &lt;message&gt;
        &lt;source&gt;Remind&lt;/source&gt;
        &lt;translation&gt;Remind&lt;/translation&gt;
    &lt;/message&gt;
    &lt;message&gt;
        &lt;source&gt;The current file already exists&lt;/source&gt;
        &lt;translation&gt;The current file already exists&lt;/translation&gt;
    &lt;/message&gt;
&lt;/context&gt;
&lt;context&gt;
    &lt;name&gt;ProjectFileCfg::Internal::EngineerDocBackup&lt;/name&gt;
    &lt;message&gt;
        &lt;source&gt;Saving the gallery [%1]...&lt;/source&gt;
        &lt;translation&gt;Saving the gallery [%1]...&lt;/translation&gt;
    &lt;/message&gt;
    &lt;message&gt;
        &lt;source&gt;BKG:&lt;/source&gt;
        &lt;translation&gt;BKG:&lt;/translation&gt;
    &lt;/message&gt;
&lt;/context&gt;
&lt;context&gt;
    &lt;name&gt;ProjectFileCfg::Internal::EngineerDocLoad&lt;/name&gt;
    &lt;message&gt;
        &lt;source&gt;read device infomation [%1] failed,reason:%2&lt;/source&gt;
        &lt;translation&gt;read device infomation [%1] failed,reason:%2&lt;/translation&gt;
    &lt;/message&gt;
    &lt;message&gt;
        &lt;source&gt;Send Config to Device&lt;/source&gt;
        &lt;translation&gt;Send Config to Device&lt;/translation&gt;
    &lt;/message&gt;
    &lt;message&gt;
        &lt;source&gt;LOGO:&lt;/source&gt;
        &lt;translation&gt;LOGO:&lt;/translation&gt;
    &lt;/message&gt;
    &lt;message&gt;
        &lt;source&gt;BKG:&lt;/source&gt;
        &lt;translation&gt;BKG:&lt;/translation&gt;
    &lt;/message&gt;
&lt;/context&gt;
&lt;context&gt;
    &lt;name&gt;ProjectFileCfg::Internal::EngineerDocOperWidget&lt;/name&gt;
    &lt;message&gt;
        &lt;source&gt;Device&lt;/source&gt;
        &lt;translation&gt;Device&lt;/translation&gt;
    &lt;/message&gt;
    &lt;message&gt;
        &lt;source&gt;Save Project&lt;/source&gt;
        &lt;translation&gt;Save Project&lt;/translation&gt;
    &lt;/message&gt;
    &lt;message&gt;
        &lt;source&gt;Import Project&lt;/source&gt;
        &lt;translation&gt;Import Project&lt;/translation&gt;
    &lt;/message&gt;
    &lt;message&gt;
        &lt;source&gt;Apply Others&lt;/source&gt;
        &lt;translation&gt;Apply Others&lt;/translation&gt;
    &lt;/message&gt;
    &lt;message&gt;
        &lt;source&gt;ALL Save as&lt;/source&gt;
        &lt;translation&gt;ALL Save as&lt;/translation&gt;
    &lt;/message&gt;
    &lt;message&gt;
        &lt;source&gt;All Delete&lt;/source&gt;
        &lt;translation&gt;All Delete&lt;/translation&gt;
    &lt;/message&gt;
    &lt;message&gt;
        &lt;source&gt;Project file&lt;/source&gt;
        &lt;translation&gt;Project file&lt;/translation&gt;
    &lt;/message&gt;
    &lt;message&gt;
        &lt;source&gt;Comment&lt;/source&gt;
        &lt;translation&gt;Comment&lt;/translation&gt;
    &lt;/message&gt;
    &lt;message&gt;
        &lt;source&gt;Operations&lt;/source&gt;
        &lt;translation&gt;Operations&lt;/translation&gt;
    &lt;/message&gt;
    &lt;message&gt;
        &lt;source&gt;Edit&lt;/source&gt;
        &lt;translation&gt;Edit&lt;/translation&gt;
    &lt;/message&gt;
    &lt;message&gt;
        &lt;source&gt;Apply&lt;/source&gt;
        &lt;translation&gt;Apply&lt;/translation&gt;
    &lt;/message&gt;
    &lt;message&gt;
        &lt;source&gt;Save as&lt;/source&gt;
        &lt;translation&gt;Save as&lt;/translation&gt;
    &lt;/message&gt;
    &lt;message&gt;
        &lt;source&gt;Delete&lt;/source&gt;
        &lt;translation&gt;Delete&lt;/translation&gt;
    &lt;/message&gt;
    &lt;message&gt;
        &lt;source&gt;Sync device data , please wait.&lt;/source&gt;
        &lt;translation&gt;Sync device data , please wait.&lt;/translation&gt;
    &lt;/message&gt;
    &lt;message&gt;
        &lt;source&gt;Restore factory,please wait...&lt;/source&gt;
        &lt;translation&gt;Restore factory,please wait...&lt;/translation&gt;
    &lt;/message&gt;
    &lt;message&gt;
        &lt;source&gt;Project&lt;/source&gt;
        &lt;translation&gt;Project&lt;/translation&gt;
    &lt;/message&gt;
    &lt;message&gt;
        &lt;source&gt;Warning&lt;/source&gt;
        &lt;translation&gt;Warning&lt;/translation&gt;
    &lt;/message&gt;
    &lt;message&gt;
        &lt;source&gt;Please select a device.&lt;/source&gt;
        &lt;translation&gt;Please select a device.&lt;/translation&gt;
    &lt;/message&gt;
    &lt;message&gt;
        &lt;source&gt;Failed to get device information&lt;/source&gt;
        &lt;translation&gt;Failed to get device information&lt;/translation&gt;
    &lt;/message&gt;
    &lt;message&gt;
        &lt;source&gt;Insufficient default path space to perform current operation&lt;/source&gt;
        &lt;translation&gt;Insufficient default path space to perform current operation&lt;/translation&gt;
    &lt;/message&gt;
    &lt;message&gt;
        &lt;source&gt;Cancel&lt;/source&gt;
        &lt;translation&gt;Cancel&lt;/translation&gt;
    &lt;/message&gt;
    &lt;message&gt;
        &lt;source&gt;Please wait while the project file is exported&lt;/source&gt;
        &lt;translation&gt;Please wait while the project file is exported&lt;/translation&gt;
    &lt;/message&gt;
    &lt;message&gt;
        &lt;source&gt;Failed to export bkg&lt;/source&gt;
        &lt;translation&gt;Failed to export bkg&lt;/translation&gt;
    &lt;/message&gt;
    &lt;message&gt;
        &lt;source&gt;Failed to export logo&lt;/source&gt;
        &lt;translation&gt;Failed to export logo&lt;/translation&gt;
    &lt;/message&gt;
    &lt;message&gt;
        &lt;source&gt;Offline device resource file is incomplete&lt;/source&gt;
        &lt;translation&gt;Offline device resource file is incomplete&lt;/translation&gt;
    &lt;/message&gt;
    &lt;message&gt;
        &lt;source&gt;User cancels current operation&lt;/source&gt;
        &lt;translation&gt;User cancels current operation&lt;/translation&gt;
    &lt;/message&gt;
    &lt;message&gt;
        &lt;source&gt;Failed to encrypt file&lt;/source&gt;
        &lt;translation&gt;Failed to encrypt file&lt;/translation&gt;
    &lt;/message&gt;
    &lt;message&gt;
        &lt;source&gt;Failed to save json file&lt;/source&gt;
        &lt;translation&gt;Failed to save json file&lt;/translation&gt;
    &lt;/message&gt;
    &lt;message&gt;
        &lt;source&gt;Remind&lt;/source&gt;
        &lt;translation&gt;Remind&lt;/translation&gt;
    &lt;/message&gt;
    &lt;message&gt;
        &lt;source&gt;The file does not exist.&lt;/source&gt;
        &lt;translation&gt;The file does not exist.&lt;/translation&gt;
    &lt;/message&gt;
    &lt;message&gt;
        &lt;source&gt;The file does not exist or the file format is incorrect.&lt;/source&gt;
        &lt;translation&gt;The file does not exist or the file format is incorrect.&lt;/translation&gt;
    &lt;/message&gt;
    &lt;message&gt;
        &lt;source&gt;Whether the current configuration needs to be backed up before the project file is imported?&lt;/source&gt;
        &lt;translation&gt;Whether the current configuration needs to be backed up before the project file is imported?&lt;/translation&gt;
    &lt;/message&gt;
    &lt;message&gt;
        &lt;source&gt; Restore factory failed &lt;/source&gt;
        &lt;translation&gt; Restore factory failed &lt;/translation&gt;
    &lt;/message&gt;
    &lt;message&gt;
        &lt;source&gt;Start save project file&lt;/source&gt;
        &lt;translation&gt;Start save project file&lt;/translation&gt;
    &lt;/message&gt;
    &lt;message&gt;
        &lt;source&gt;Incorrect file content&lt;/source&gt;
        &lt;translation&gt;Incorrect file content&lt;/translation&gt;
    &lt;/message&gt;
    &lt;message&gt;
        &lt;source&gt;Input or output card mismatch&lt;/source&gt;
        &lt;translation&gt;Input or output card mismatch&lt;/translation&gt;
    &lt;/message&gt;
    &lt;message&gt;
        &lt;source&gt;Hardware version mismatch&lt;/source&gt;
        &lt;translation&gt;Hardware version mismatch&lt;/translation&gt;
    &lt;/message&gt;
    &lt;message&gt;
        &lt;source&gt;Failed to decompress file&lt;/source&gt;
        &lt;translation&gt;Failed to decompress file&lt;/translation&gt;
    &lt;/message&gt;
    &lt;message&gt;
        &lt;source&gt;Project file import failed&lt;/source&gt;
        &lt;translation&gt;Project file import failed&lt;/translation&gt;
    &lt;/message&gt;
    &lt;message&gt;
        &lt;source&gt;Incorrect JSON file&lt;/source&gt;
        &lt;translation&gt;Incorrect JSON file&lt;/translation&gt;
    &lt;/message&gt;
    &lt;message&gt;
        &lt;source&gt;Device type mismatch&lt;/source&gt;
        &lt;translation&gt;Device type mismatch&lt;/translation&gt;
    &lt;/message&gt;
    &lt;message&gt;
        &lt;source&gt;Protocol version mismatch&lt;/source&gt;
        &lt;translation&gt;Protocol version mismatch&lt;/translation&gt;
    &lt;/message&gt;
    &lt;message&gt;
        &lt;source&gt;apply gallery failed&lt;/source&gt;
        &lt;translation&gt;apply gallery failed&lt;/translation&gt;
    &lt;/message&gt;
    &lt;message&gt;
        &lt;source&gt;Incorrect gallery file.&lt;/source&gt;
        &lt;translation&gt;Incorrect gallery file.&lt;/translation&gt;
    &lt;/message&gt;
    &lt;message&gt;
        &lt;source&gt;save as project file,please wait...&lt;/source&gt;
        &lt;translation&gt;save as project file,please wait...&lt;/translation&gt;
    &lt;/message&gt;
    &lt;message&gt;
        &lt;source&gt;save as [%1] failed&lt;/source&gt;
        &lt;translation&gt;save as [%1] failed&lt;/translation&gt;
    &lt;/message&gt;
    &lt;message&gt;
        &lt;source&gt;save as success&lt;/source&gt;
        &lt;translation&gt;save as success&lt;/translation&gt;
    &lt;/message&gt;
    &lt;message&gt;
        &lt;source&gt;The file[%1] context is invalid.&lt;/source&gt;
        &lt;translation&gt;The file[%1] context is invalid.&lt;/translation&gt;
    &lt;/message&gt;
    &lt;message&gt;
        &lt;source&gt;Import project file [%1] failed&lt;/source&gt;
        &lt;translation&gt;Import project file [%1] failed&lt;/translation&gt;
    &lt;/message&gt;
    &lt;message&gt;
        &lt;source&gt;Import as success&lt;/source&gt;
        &lt;translation&gt;Import as success&lt;/translation&gt;
    &lt;/message&gt;
    &lt;message&gt;
        &lt;source&gt;file&lt;/source&gt;
        &lt;translation&gt;file&lt;/translation&gt;
    &lt;/message&gt;
    &lt;message&gt;
        &lt;source&gt;Not enough space to import all selected files.&lt;/source&gt;
        &lt;translation&gt;Not enough space to import all selected files.&lt;/translation&gt;
    &lt;/message&gt;
    &lt;message&gt;
        &lt;source&gt;Import project files,please wait...&lt;/source&gt;
        &lt;translation&gt;Import project files,please wait...&lt;/translation&gt;
    &lt;/message&gt;
    &lt;message&gt;
        &lt;source&gt;choose Des Directory&lt;/source&gt;
        &lt;translation&gt;choose Des Directory&lt;/translation&gt;
    &lt;/message&gt;
    &lt;message&gt;
        &lt;source&gt;Project File [%1] already exist. Please change file name and try again&lt;/source&gt;
        &lt;translation&gt;Project File [%1] already exist. Please change file name and try again&lt;/translation&gt;
    &lt;/message&gt;
    &lt;message&gt;
        &lt;source&gt;Cannot save the file because there is not enough storage available.&lt;/source&gt;
        &lt;translation&gt;Cannot save the file because there is not enough storage available.&lt;/translation&gt;
    &lt;/message&gt;
    &lt;message&gt;
        &lt;source&gt;Confirm to delete the selected project file?&lt;/source&gt;
        &lt;translation&gt;Confirm to delete the selected project file?&lt;/translation&gt;
    &lt;/message&gt;
    &lt;message&gt;
        &lt;source&gt;Delete project file failed!&lt;/source&gt;
        &lt;translation&gt;Delete project file failed!&lt;/translation&gt;
    &lt;/message&gt;
    &lt;message&gt;
        &lt;source&gt;Confirm to delete all project file?&lt;/source&gt;
        &lt;translation&gt;Confirm to delete all project file?&lt;/translation&gt;
    &lt;/message&gt;
    &lt;message&gt;
        &lt;source&gt;File rename failed&lt;/source&gt;
        &lt;translation&gt;File rename failed&lt;/translation&gt;
    &lt;/message&gt;
&lt;/context&gt;
&lt;context&gt;
    &lt;name&gt;ProjectFileCfg::Internal::ProjectFileCfgMode&lt;/name&gt;
    &lt;message&gt;
        &lt;source&gt;Project File&lt;/source&gt;
        &lt;translation&gt;Project File&lt;/translation&gt;
    &lt;/message&gt;
    &lt;message&gt;
        &lt;source&gt;Switch to project file module&lt;/source&gt;
        &lt;translation&gt;Switch to project file module&lt;/translation&gt;
    &lt;/message&gt;
&lt;/context&gt;
&lt;context&gt;
    &lt;name&gt;UDiskSelectWidget&lt;/name&gt;
    &lt;message&gt;
        &lt;source&gt;Please select the destination U disk</translation>
    </message>
</context>
</TS>
