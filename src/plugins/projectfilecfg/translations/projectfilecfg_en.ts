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
        <translation>Please select the destination U disk</translation>
    </message>
</context>
</TS>
